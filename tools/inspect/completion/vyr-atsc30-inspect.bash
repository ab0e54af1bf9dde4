# Completion of vyr-atsc30-inspect for bash. Made by scripts/make-manual.

_vyr_atsc30_inspect()
{
    local options="-h --help --version --interface --join --filter --duration --packets --json --output --html
        --metrics --every --baseline --local-time --genres --no-limit --full -q --quiet --progress --no-progress
        --extract --files --extract-limit --trust --ignore --severity --fail-on --max-interval --rules --lls --route
        --mmtp --strict --set --log --service --table --session --from --until"
    local rules="input-missing input-unreadable interface-lost input-directory input-empty input-unknown
        input-too-large capture-damaged link-type packets-cut packets-dropped packets-compressed not-joined
        packets-malformed assertion extract-limit no-lls no-slt table-too-short table-not-parsed
        changed-without-version too-many-services several-broadcasts service-dropped service-left-out bad-address
        not-multicast service-id-twice channel-twice session-two-protocols session-shared category-unknown
        protocol-unknown protocol-version-unknown url-type-unknown broadband-without-url name-too-long hidden-linear
        sequence-unchanged sequence-changed table-interval table-once system-time tai-offset utc-offset
        daylight-saving alert-expired alert-media-missing alert-without-wakeup alert-reference-unknown
        rating-dimension-unknown rating-region-unknown no-signalling no-sessions lct-malformed mmtp-malformed
        mmtp-version object-not-read object-passed-over document-not-parsed message-not-parsed item-without-part
        part-without-item global-service-id no-s-tsid no-mpd tsi-twice rep-id-unknown representation-not-carried
        base-pattern-unmatched media-info-contradicts protection-missing protection-unannounced mpd-in-future
        mpd-not-updated publish-time-back signalling-interval session-not-sent files-not-sent session-not-announced
        unsignalled-traffic rate-above-bandwidth rate-unlike-mpd session-outside-time no-initialization
        objects-incomplete many-objects-incomplete efdt-expired no-mp-table asset-not-sent packet-id-twice
        component-without-asset packets-lost many-packets-lost bad-certificate bad-signature signature-wrong
        certificate-expired certificate-not-yet-valid certificate-ends-soon certificate-untrusted signer-not-announced
        unsigned-sibling guide-not-parsed guide-incomplete guide-too-large guide-without-content guide-expired
        guide-overlap guide-hole guide-ends-soon guide-title-language guide-service-unknown"
    local tables="SLT RRT SystemTime AEAT OnscreenMessageNotification CertificationData SignedMultiTable UserDefined"
    local current=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} rule=
    COMPREPLY=()
    # A word is split at "=": --log=info is three words, and so is --severity no-lls=note behind the option.
    [ "$current" = = ] && current=
    if [ "${COMP_WORDS[COMP_CWORD]}" != = ] && [ "$option" = = ] && [ "$COMP_CWORD" -ge 2 ]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
        [ "${option#--}" = "$option" ] && rule=$option
    elif [ "${COMP_WORDS[COMP_CWORD]}" = = ] && [ "${option#--}" = "$option" ]; then
        rule=$option
    fi
    if [ -n "$rule" ]; then
        case " $rules " in
            *" $rule "*) mapfile -t COMPREPLY < <(compgen -W 'error warning note' -- "$current") ;;
        esac
        return
    fi
    case $option in
        --output|--html|--metrics|--baseline|--genres|--trust)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            compopt -o filenames 2>/dev/null ;;
        --extract)
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            compopt -o filenames 2>/dev/null ;;
        --interface|--join)
            mapfile -t COMPREPLY < <(compgen -W "$(ls /sys/class/net 2>/dev/null)" -- "${current##*%}")
            case $current in *%*) COMPREPLY=("${COMPREPLY[@]/#/${current%\%*}%}") ;; esac ;;
        --ignore)
            mapfile -t COMPREPLY < <(compgen -W "$rules" -- "$current") ;;
        --severity)
            mapfile -t COMPREPLY < <(compgen -S = -W "$rules" -- "$current")
            compopt -o nospace 2>/dev/null ;;
        --fail-on)
            mapfile -t COMPREPLY < <(compgen -W 'error warning note' -- "$current") ;;
        --log)
            mapfile -t COMPREPLY < <(compgen -W 'debug info error silent' -- "$current") ;;
        --table)
            mapfile -t COMPREPLY < <(compgen -W "$tables" -- "$current") ;;
        --set)
            mapfile -t COMPREPLY < <(compgen -W 'db/menu/broadcasting/atsc3_bb_option=' -- "$current")
            compopt -o nospace 2>/dev/null ;;
        --filter|--duration|--packets|--every|--extract-limit|--max-interval|--lls|--route|--mmtp|--service|--session|--from|--until) ;;
        *)
            if [ "${current#-}" != "$current" ]; then
                mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
            else
                mapfile -t COMPREPLY < <(compgen -f -- "$current")
                compopt -o filenames 2>/dev/null
            fi ;;
    esac
    return 0
}
complete -F _vyr_atsc30_inspect vyr-atsc30-inspect
