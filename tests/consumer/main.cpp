// A program outside the tree, built against what was installed. With an argument it misuses the
// library as often as that says, to show what the default platform and the stand-in base parser library make
// of it.
#include <common/ChannelMap.h>
#include <lls/ParseSLT.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" void vsyslog(int level, const char* format, va_list arguments)
{
    std::printf("<%d>", level);
    std::vprintf(format, arguments);
    std::printf("\n");
}

int main(int argc, char** argv)
{
    CChannelMap map;
    if (argc > 1) {
        for (int i = std::atoi(argv[1]); i > 0; --i) {
            map.Destroy();
        }
        return 0;
    }
    const char table[] =
        "\1\1\1\1<SLT bsid='801'><Service serviceId='7' protected='false' hidden='false' "
        "broadbandAccessRequired='false'/>"
        "</SLT>";
    const unsigned int size = static_cast<unsigned int>(std::strlen(table));
    IParse::SItem item = {reinterpret_cast<const unsigned char*>(table), size, size * 8, 0, true};

    CParseSLT slt;
    const bool good = map.Create() && slt.Create(&map, nullptr) && slt.AddLLSGroupId(1) && slt.Parse(&item) &&
                      slt.Bsid() == 801 && slt.ServiceCount() == 1;
    std::printf("bsid %d, %d service(s)\n", slt.Bsid(), slt.ServiceCount());
    slt.Destroy();
    map.Destroy();
    return good ? 0 : 1;
}
