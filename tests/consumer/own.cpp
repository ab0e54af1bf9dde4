// A program with hidden visibility, an assertion sink of its own, and classes that are named like some of the
// library's (names.cpp): neither must change the other.
#include <esg/ESGContentFragment.h>
#include <platform/BaseParser.h>

#include <cstdio>
#include <cstring>

static int s_assertions = 0;

void _TCParserAssert(const char*, const char*, unsigned)
{
    ++s_assertions;
}

int main()
{
    const char text[] =
        "<Content id='a'><Name>n</Name><Description>d</Description><Genre href='x:1'/><AudioLanguage languageTag='l'/>"
        "<Unknown/></Content>";
    CESGContentFragment fragment;
    fragment.Destroy();
    const bool good = fragment.Create() && fragment.Parse(text, static_cast<unsigned int>(std::strlen(text)));
    fragment.Destroy();
    std::printf("parsed %d, assertions %d\n", good, s_assertions);
    return good && s_assertions == 1 ? 0 : 1;
}
