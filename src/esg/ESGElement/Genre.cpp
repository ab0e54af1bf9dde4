#include "esg/ESGElement/Genre.h"

#include <cstdlib>
#include <cstring>

#include "common/PlatformFile.h"
#include "esg/ESGKind.h"
#include "esg/GenreNameParse.h"

bool CGenre::t_ProcessGenreName(SGenre& state, void* node)
{
    const vyr::CNodeText term = vyr::CNodeText::Content(node);
    if (!term.HasText()) {
        return true;
    }
    const char* colon = std::strrchr(term.Text(), ':');
    state.index = static_cast<int>(std::strtol(colon ? colon + 1 : term.Text(), nullptr, 10));
    CGenreNameParse names;
    if (names.Create()) {
        names.Parse(vyr::PlatformFile("/opt/data/genre-cs.xml").c_str());
        names.Destroy();
    }
    const auto found = SGenreNameParse::refMap.find(state.index);
    state.name = found != SGenreNameParse::refMap.end() ? found->second.get() : nullptr;
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CGenre::t_ProcessGenreName] Index = [%d], Name = [%s]", state.index,
            state.name ? state.name : "");
    return true;
}

void CGenre::sm_Read(SGenre& state, void* node)
{
    vyr::ReadAttribute(node, "type", state.type);
    vyr::ReadAttribute(node, "href", state.href);
    vyr::ReadContent(node, state.content);
    t_ProcessGenreName(state, node);
}

const vyr::SESGKind& CGenre::t_Kind() const
{
    static constexpr vyr::SESGKind k_kind = vyr::ElementKind<SGenre, sm_Read>(vyr::k_source.text, "CGenre", "Genre");
    return k_kind;
}
