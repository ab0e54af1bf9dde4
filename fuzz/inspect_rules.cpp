// The inspector over a made broadcast that is broken: the first bytes pick the form of the report, how long it is, and
// what is changed in the texts of its tables and documents; then each byte says what becomes of a packet. Reports
// on the way change nothing of what is found, and what is written out has names of the tool's own.
// Sources: tools/inspect/judge/*.cpp tools/inspect/Inspector.cpp tools/inspect/Broadcast.cpp
// Sources: tools/inspect/extract/*.cpp
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "InspectFuzz.h"
#include "Inspector.h"
#include "extract/Extract.h"
#include "inspect/MadeBroadcast.h"

using namespace vyr::inspect;

namespace {

/// Gives the bytes a name that can be opened.
std::string FileOf(const std::string& bytes)
{
    static const int s_file = memfd_create("vyr", MFD_CLOEXEC);
    Require(ftruncate(s_file, 0) == 0 &&
            pwrite(s_file, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
    return "/proc/self/fd/" + std::to_string(s_file);
}

void ChangeText(CScript& script, std::string& text)
{
    const std::size_t at = script.Word() % (text.size() + 1);
    const std::size_t count = script.Byte() % 32;
    std::string other;
    for (std::size_t left = script.Byte() % 16; left != 0; --left) {
        other += static_cast<char>(script.Byte());
    }
    text.replace(at, count, other);
}

/// False: the packet is not sent.
bool ChangePacket(unsigned step, packets::SSent& sent)
{
    const unsigned much = step >> 4;
    switch (step & 0xF) {
        case 1:
            return false;
        case 2:
            sent.lct.tsi = much * 10;
            break;
        case 3:
            sent.port += much;
            break;
        case 4:
            sent.lct.toi += much;
            break;
        case 5:
            sent.lct.length += static_cast<int>(much) - 8;
            break;
        case 6:
            sent.at += much * 700000;
            break;
        case 7:
            sent.at -= std::min<std::uint64_t>(sent.at, much * 700000);
            break;
        case 8:
            sent.lct.start += much;
            break;
        case 9:
            sent.data = sent.data.substr(0, sent.data.size() * much / 16);
            break;
        default:
            break;
    }
    return true;
}

/// A folder to write out to, gone with it. Whatever the broadcast says, what is in it has names of the tool's.
class CRoom {
  public:
    CRoom() : m_name((std::filesystem::temp_directory_path() / "vyr-fuzz-XXXXXX").string())
    {
        Require(mkdtemp(m_name.data()) != nullptr);
    }
    ~CRoom()
    {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_name)) {
            const std::string name = entry.path().filename().string();
            Require(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789.-") == std::string::npos);
            Require(!entry.is_symlink() && (entry.is_directory() || entry.is_regular_file()));
        }
        std::filesystem::remove_all(m_name);
    }
    CRoom(const CRoom&) = delete;
    CRoom& operator=(const CRoom&) = delete;
    const std::string& Name() const { return m_name; }

  private:
    std::string m_name;
};

SSummary Summary(const SOptions& options, bool json)
{
    constexpr std::uint64_t k_limit = 65536;
    CFuzzReport reports(json);
    std::optional<CRoom> room;
    std::optional<CExtract> extract;
    if (options.files) {
        room.emplace();
        extract.emplace(reports.Report(), room->Name(), k_limit);
    }
    CInspector(options, reports.Report(), reports.Output(), reports.Progress()).Run();
    Require(!extract || extract->Error() == 0);
    return reports.Report().Summary();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CScript script(data, size);
    const std::uint8_t form = script.Byte();
    packets::SBroadcast broadcast;
    broadcast.rounds = 2 + script.Byte() % 16;
    std::string* const texts[] = {&broadcast.services, &broadcast.systemTime, &broadcast.usbd, &broadcast.stsid,
                                  &broadcast.mpd};
    for (unsigned changes = script.Byte() % 8; changes != 0; --changes) {
        ChangeText(script, *texts[script.Byte() % std::size(texts)]);
    }
    broadcast.change = [&](packets::SSent& sent) { return ChangePacket(script.Byte(), sent); };
    SOptions options;
    options.inputs = {FileOf(broadcast.Bytes())};
    options.llsStreams = {{packets::k_lls, 4937}};
    options.files = (form & 4) != 0;
    const SSummary summary = Summary(options, (form & 1) != 0);
    std::uint64_t findings = 0;
    for (const auto& [rule, count] : summary.findings) {
        findings += count;
    }
    Require(findings == summary.errors + summary.warnings + summary.notes);
    if ((form & 2) != 0) {
        options.every = 1 + form / 64;
        Require(Summary(options, (form & 1) != 0).findings == summary.findings);
    }
    return 0;
}
