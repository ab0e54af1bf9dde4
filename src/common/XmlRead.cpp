#include "common/XmlRead.h"

#include <algorithm>
#include <cstring>

#include "common/Ipv4.h"

namespace vyr {

std::unique_ptr<char[]> NewText(const char* text, std::size_t length)
{
    std::unique_ptr<char[]> copy(new char[length + 1]);
    std::copy_n(text, length, copy.get());
    copy[length] = 0;
    return copy;
}

std::unique_ptr<char[]> NewText(const CNodeText& text)
{
    return text.Found() ? NewText(text.Text(), std::strlen(text.Text())) : NewText("", 0);
}

void Read(const CNodeText& text, std::unique_ptr<char[]>& out)
{
    out = text.Found() ? NewText(text) : nullptr;
}

bool ReadIpv4(const CNodeText& text, unsigned int& out)
{
    if (text.Found()) {
        out = Ipv4Address(text.Text());
    }
    return text.Found();
}

}  // namespace vyr
