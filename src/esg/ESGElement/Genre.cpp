#include "esg/ESGElement/Genre.h"

#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <tuple>
#include <utility>

#include "esg/ESGKind.h"
#include "esg/GenreAsking.h"
#include "esg/GenreNameParse.h"
#include "esg/GenreNames.h"
#include "platform/PlatformFile.h"

namespace {

thread_local int g_askings = 0;
thread_local bool g_asked = false;

}  // namespace

namespace vyr {

CGenreAsking::CGenreAsking()
{
    if (g_askings++ == 0) {
        g_asked = false;
    }
}

CGenreAsking::~CGenreAsking()
{
    --g_askings;
}

bool CGenreAsking::First()
{
    return g_askings == 0 || !std::exchange(g_asked, true);
}

}  // namespace vyr

/// Fills the map of names, if it is empty. A file that has none is read again only when it has changed.
static void ReadNames()
{
    struct SFile {
        dev_t device;
        ino_t inode;
        off_t size;
        time_t seconds;
        long nanoseconds;
    };
    static thread_local SFile s_useless{};
    const bool known = vyr::GenreNamesKnown();
    if (!known && !vyr::CGenreAsking::First()) {
        return;
    }
    const std::string path = vyr::PlatformFile("/opt/data/genre-cs.xml");
    struct stat about {};
    const bool exists = !known && stat(path.c_str(), &about) == 0;
    const SFile file = {about.st_dev, about.st_ino, about.st_size, about.st_mtim.tv_sec, about.st_mtim.tv_nsec};
    const auto all = [](const SFile& f) { return std::tie(f.device, f.inode, f.size, f.seconds, f.nanoseconds); };
    CGenreNameParse names;
    if ((exists && all(file) == all(s_useless)) || !names.Create()) {
        return;
    }
    names.Parse(path.c_str());
    names.Destroy();
    if (exists && !vyr::GenreNamesKnown()) {
        s_useless = file;
    }
}

bool CGenre::t_ProcessGenreName(SGenre& state, void* node)
{
    const vyr::CNodeText term = vyr::CNodeText::Content(node);
    if (!term.HasText()) {
        return true;
    }
    const char* colon = std::strrchr(term.Text(), ':');
    state.index = static_cast<int>(std::strtol(colon ? colon + 1 : term.Text(), nullptr, 10));
    ReadNames();
    state.name = vyr::GenreName(state.index);
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
    return vyr::ElementKind<SGenre, sm_Read>("CGenre", "Genre");
}
