#include "broadcast/Descriptions.h"

#include <ctime>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "inspect/Packets.h"
#include "support/Gzip.h"
#include "support/MmtWriter.h"

namespace {

constexpr std::int64_t k_ntp = 2208988800;  ///< seconds from 1900 to 1970

[[noreturn]] void Fail(const std::string& why)
{
    throw std::runtime_error(why);
}

bool EndsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string Hex(const std::string& digits)
{
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

/// A number, or a time in NTP form: of 32 bits seconds, of 64 with a fraction.
std::uint64_t Value(const std::string& text, unsigned bits)
{
    if (text.find('T') == std::string::npos) {
        return std::stoull(text, nullptr, 0);
    }
    const auto seconds = static_cast<std::uint64_t>(CDescriptions::Time(text) + k_ntp);
    return bits == 64 ? seconds << 32 : seconds;
}

}  // namespace

CDescriptions::CDescriptions(std::string folder, std::int64_t time) : m_folder(std::move(folder) + '/'), m_time(time) {}

std::string CDescriptions::File(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        Fail("cannot read " + path);
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

CDescriptions::TLine CDescriptions::Line(std::istream& text)
{
    TLine words;
    for (std::string line; words.empty() && std::getline(text, line);) {
        std::istringstream in(line);
        for (char c = 0; in >> c && c != '#';) {
            SWord word;
            word.quoted = c == '"';
            std::getline(in.putback(c).ignore(word.quoted ? 1 : 0), word.text, word.quoted ? '"' : ' ');
            words.push_back(word);
        }
    }
    return words;
}

std::int64_t CDescriptions::Time(const std::string& text)
{
    std::tm fields{};
    const char* end = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%SZ", &fields);
    return end != nullptr && *end == '\0' ? timegm(&fields) : (Fail("no time: " + text), 0);
}

std::uint32_t CDescriptions::Address(const std::string& text)
{
    std::istringstream in(text);
    std::uint32_t address = 0;
    unsigned part = 0;
    for (char dot = 0; in >> part; in >> dot) {
        address = address << 8 | part;
    }
    return address;
}

std::string CDescriptions::Bytes(const std::string& file)
{
    std::string text = File(m_folder + file);
    if (EndsWith(file, ".layout")) {
        std::istringstream lines(text);
        return m_Block(lines);
    }
    if (EndsWith(file, ".mime")) {  // lines end as those of mail do
        for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) {
            text.replace(at, 1, "\r\n");
        }
    }
    return m_Marked(text);
}

std::string CDescriptions::Compressed(const std::string& file)
{
    return Gzip(Bytes(file));
}

const std::string& CDescriptions::m_Value(const std::string& name) const
{
    const auto value = m_values.find(name);
    return value != m_values.end() ? value->second : (Fail("no value " + name), value->second);
}

const CSigner& CDescriptions::m_Signer(const std::string& name)
{
    std::istringstream lines(File(m_folder + "signers"));
    for (TLine line = Line(lines); m_signers.count(name) == 0; line = Line(lines)) {
        if (line.empty()) {
            Fail("no signer " + name);
        }
        if (line.at(0).text == name) {
            const std::string& issuer = line.at(2).text;
            m_signers[name] = std::make_unique<CSigner>(line.at(1).text, Time(line.at(3).text), Time(line.at(4).text),
                                                        issuer == "-" ? nullptr : &m_Signer(issuer),
                                                        File(m_folder + "keys/" + name + ".pem"));
        }
    }
    return *m_signers.at(name);
}

/// The fields of a layout up to the brace that ends them, or the end of the text.
std::string CDescriptions::m_Block(std::istream& text)
{
    CMmtBuilder out;
    std::map<std::string, std::size_t> labels;
    std::vector<std::pair<std::size_t, std::string>> offsets;
    for (TLine line = Line(text); !line.empty() && line[0].text != "}"; line = Line(text)) {
        const std::string& kind = line.at(1).text;
        SWord value = line.size() > 2 ? line[2] : SWord();
        if (value.text[0] == '$' && !value.quoted) {
            value.text = m_Value(value.text.substr(1));
        }
        if (line[0].text == "label" && line.size() == 2) {
            labels[kind] = out.Size();
        } else if (line[1].quoted || kind == "text") {
            out.Put(line[1].quoted ? kind : value.text);
        } else if (kind == "hex") {
            out.Put(Hex(value.text));
        } else if (kind == "address") {
            out.Put(32, Address(value.text));
        } else if (kind == "file") {
            out.Put(Bytes(value.text));
        } else if (kind == "gzip") {
            out.Put(Compressed(value.text));
        } else if (kind == "signed") {
            m_signed = m_Block(text);
            out.Put(m_signed);
        } else if (kind == "signature") {
            out.Put(m_Signer(value.text).Sign(m_signed, true, m_time));
        } else if (kind == "offset") {
            offsets.emplace_back(out.Size(), value.text);
            out.Put(32, 0);
        } else {
            const auto bits = static_cast<unsigned>(std::stoul(kind));
            if (value.text == "size") {
                out.Put(bits, Bytes(line.at(3).text).size());
            } else if (value.quoted || value.text == "{") {
                const std::string block = value.quoted ? value.text : m_Block(text);
                out.Put(bits, block.size()).Put(block);
            } else {
                out.Put(bits, Value(value.text, bits));
            }
        }
    }
    std::string bytes = out.Bytes();
    for (const auto& [at, label] : offsets) {
        bytes.replace(at, 4, packets::Number(labels.at(label) - labels.at("origin"), 4));
    }
    return bytes;
}

/// The text with its marks, {{…}}, replaced.
std::string CDescriptions::m_Marked(const std::string& text)
{
    std::string out;
    std::size_t begin = 0;  // of what is signed
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t mark = text.find("{{", at);
        out += text.substr(at, mark - at);
        if (mark == std::string::npos) {
            break;
        }
        const std::size_t end = text.find("}}", mark);
        std::istringstream words(text.substr(mark + 2, end - mark - 2));
        const TLine line = Line(words);
        at = end + 2;
        if (line.at(0).text == "signed") {
            begin = out.size();
        } else if (line[0].text == "/signed") {
            m_signed = out.substr(begin);
        } else {
            out += m_Mark(line);
        }
    }
    return out;
}

std::string CDescriptions::m_Mark(const TLine& words)
{
    const std::string& kind = words.at(0).text;
    const std::string& what = words.at(1).text;
    if (kind == "file") {
        return Bytes(what);
    }
    if (kind == "value") {
        return m_Value(what);
    }
    if (kind == "ntp") {
        return std::to_string(Time(what) + k_ntp);
    }
    const CSigner& signer = m_Signer(what);
    if (kind == "certificate") {
        return CSigner::Base64(signer.Der());
    }
    if (kind == "key-id") {
        return CSigner::Base64(signer.KeyId());
    }
    if (kind == "ocsp") {
        return CSigner::Base64(signer.Ocsp(m_Signer(words.at(2).text), m_time));
    }
    return kind == "signature" ? CSigner::Base64(signer.Sign(m_signed, true, m_time)) : (Fail("no mark: " + kind), "");
}
