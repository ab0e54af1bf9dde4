// Makes a capture of a broadcast from a folder that describes it: make-broadcast FOLDER > CAPTURE.
// The same descriptions give the same bytes, always.

#include <algorithm>
#include <exception>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "broadcast/Descriptions.h"
#include "inspect/Packets.h"

namespace {

constexpr std::size_t k_piece = 1200;  ///< bytes of an object or a message in one packet

/// A line of the schedule: what is sent where, from when on, and how often.
struct SSending {
    std::string protocol;  ///< lls, route, mmtp or udp
    std::uint32_t address = 0;
    unsigned port = 0;
    std::map<std::string, std::string> options;

    std::string Text(const std::string& name) const
    {
        const auto option = options.find(name);
        return option != options.end() ? option->second : "";
    }
    double Number(const std::string& name, double otherwise = 0) const
    {
        return options.count(name) != 0 ? std::stod(Text(name)) : otherwise;
    }
    unsigned Count(const std::string& name) const { return static_cast<unsigned>(Number(name)); }
};

/// A packet of it.
struct SSent {
    double time;
    const SSending* sending;
    std::string data;          ///< of the packet, or all of the payload of its datagram
    packets::SLct lct = {};    ///< of ROUTE
    packets::SMmtp mmtp = {};  ///< of MMTP, but for the sequence number
};

/// What one sending puts on the air, in the order of its packets.
class CSender {
  public:
    CSender(CDescriptions& descriptions, double seconds) : m_descriptions(descriptions), m_seconds(seconds) {}

    void Send(const SSending& sending)
    {
        const double every = sending.Number("every", m_seconds);
        const double until = std::min(sending.Number("until", m_seconds), m_seconds);
        const bool media = sending.options.count("media") != 0;
        unsigned count = sending.Count("number");
        for (double time = sending.Number("from"); time < until; time += every, ++count) {
            const std::string bytes = media ? Media(sending, count) : Bytes(sending);
            const bool whole = sending.protocol != "route" && sending.protocol != "mmtp";
            const std::size_t piece = whole ? bytes.size() : k_piece;
            const std::size_t pieces = std::max<std::size_t>((bytes.size() + piece - 1) / piece, 1);
            // Media are spread over the time that they last.
            const double step = media ? every / static_cast<double>(pieces) : 0.001;
            for (std::size_t i = 0; i < pieces; ++i) {
                SSent sent{time + step * static_cast<double>(i), &sending, bytes.substr(i * piece, piece)};
                Route(sent, bytes.size(), i, count);
                Mmtp(sent, pieces, i, count, media);
                if (sent.time < m_seconds) {
                    m_sent.push_back(std::move(sent));
                }
            }
        }
    }
    std::string Capture(std::int64_t begin)
    {
        std::stable_sort(m_sent.begin(), m_sent.end(),
                         [](const SSent& one, const SSent& other) { return one.time < other.time; });
        packets::CCapture capture(1);
        capture.Begin(static_cast<std::uint64_t>(begin)).At(0, 1);
        std::map<const SSending*, unsigned> number;
        std::map<std::pair<const std::string, unsigned>, unsigned> sequence;
        for (SSent& sent : m_sent) {
            const SSending& sending = *sent.sending;
            std::string payload = sent.data;
            if (sending.protocol == "route") {
                payload = packets::Lct(sent.lct, sent.data);
            } else if (sending.protocol == "mmtp") {
                const std::string session = std::to_string(sending.address) + ':' + std::to_string(sending.port);
                sent.mmtp.sequence = sequence[{session, sent.mmtp.packetId}]++;
                payload = packets::Mmtp(sent.mmtp, sent.data);
            }
            const unsigned lose = sending.Count("lose");
            if (lose == 0 || ++number[&sending] % lose != 0) {
                capture.At(static_cast<std::uint64_t>(sent.time * 1e6 + 0.5));
                Frames(capture, sending, packets::Udp(payload, sending.port));
            }
        }
        return capture.Bytes();
    }

  private:
    std::string Bytes(const SSending& sending)
    {
        m_descriptions.SetValues(sending.options);
        const std::string file = sending.Text("gzip");
        return file.empty() ? m_descriptions.Bytes(sending.Text("send")) : m_descriptions.Compressed(file);
    }
    /// Not what a player could play.
    static std::string Media(const SSending& sending, unsigned count)
    {
        const std::string words = sending.Text("name") + " " + std::to_string(count) + ". ";
        std::string bytes;
        for (const std::size_t size = sending.Count("media"); bytes.size() < size;) {
            bytes += words.substr(0, size - bytes.size());
        }
        return bytes;
    }
    /// A TOI with + behind it counts up.
    static void Route(SSent& sent, std::size_t size, std::size_t piece, unsigned count)
    {
        const std::string toi = sent.sending->Text("toi");
        if (!toi.empty()) {
            sent.lct.toi = static_cast<unsigned>(std::stoul(toi)) + (toi.back() == '+' ? count : 0);
            sent.lct.tsi = sent.sending->Count("tsi");
            sent.lct.start = static_cast<std::uint32_t>(piece * k_piece);
            sent.lct.length = static_cast<int>(size);
            sent.lct.close = sent.lct.start + sent.data.size() == size;
            sent.lct.codePoint = sent.sending->Count("codepoint");
        }
    }
    /// Signalling in fragments where one packet does not hold it; media as media fragment units of a sample each.
    static void Mmtp(SSent& sent, std::size_t pieces, std::size_t piece, unsigned count, bool media)
    {
        const unsigned more = static_cast<unsigned>(pieces - 1 - piece);
        const unsigned part = pieces == 1 ? 0 : piece == 0 ? 1 : more == 0 ? 3 : 2;
        sent.mmtp.packetId = sent.sending->Count("packet_id");
        sent.mmtp.type = media ? 0 : 2;
        sent.mmtp.flags = media && piece == 0 ? 0x0100 : 0;  // random access
        sent.mmtp.payload = part << 14 | more;
        if (media && sent.sending->protocol == "mmtp") {
            sent.mmtp.payload = static_cast<unsigned>(sent.data.size()) + 6;
            sent.data =
                packets::Number(2u << 12 | 1u << 11 | part << 9 | more, 2) + packets::Number(count, 4) + sent.data;
        }
    }
    /// With the group's address of Ethernet, and the check sum of the IP header. What is too long is sent in fragments.
    void Frames(packets::CCapture& capture, const SSending& sending, const std::string& datagram)
    {
        constexpr std::size_t k_most = 1480;
        packets::SIpv4 fields;
        fields.destination = sending.address;
        fields.id = ++m_id & 0xFFFF;
        for (std::size_t at = 0; at < datagram.size(); at += k_most) {
            fields.flagsAndOffset = static_cast<unsigned>(at / 8 | (at + k_most < datagram.size() ? 0x2000 : 0));
            std::string ip = packets::Ipv4(datagram.substr(at, k_most), fields);
            unsigned sum = 0;
            for (std::size_t i = 0; i < 20; ++i) {
                sum += static_cast<unsigned>(static_cast<unsigned char>(ip[i])) << (i % 2 == 0 ? 8 : 0);
            }
            sum = (sum & 0xFFFF) + (sum >> 16);
            ip.replace(10, 2, packets::Number(~(sum + (sum >> 16)) & 0xFFFF, 2));
            const std::string group = packets::Number(0x01005E000000 | (sending.address & 0x7FFFFF), 6);
            capture.Add(packets::Ethernet(ip).replace(0, 6, group));
        }
    }

    CDescriptions& m_descriptions;
    double m_seconds;
    std::vector<SSent> m_sent;
    unsigned m_id = 0;
};

std::string Broadcast(const std::string& folder)
{
    std::istringstream schedule(CDescriptions::File(folder + "/schedule"));
    const std::int64_t begin = CDescriptions::Time(CDescriptions::Line(schedule).at(1).text);
    const double seconds = std::stod(CDescriptions::Line(schedule).at(1).text);
    CDescriptions descriptions(folder, begin);
    CSender sender(descriptions, seconds);
    std::vector<SSending> sendings;
    for (CDescriptions::TLine line; !(line = CDescriptions::Line(schedule)).empty();) {
        const std::string& where = line.at(1).text;
        const std::size_t colon = where.find(':');
        SSending sending{line[0].text,
                         CDescriptions::Address(where.substr(0, colon)),
                         static_cast<unsigned>(std::stoul(where.substr(colon + 1))),
                         {}};
        for (std::size_t i = 2; i < line.size(); i += 2) {
            sending.options[line[i].text] = line.at(i + 1).text;
        }
        sendings.push_back(std::move(sending));
    }
    for (const SSending& sending : sendings) {
        sender.Send(sending);
    }
    return sender.Capture(begin);
}

}  // namespace

int main(int argc, char** argv)
try {
    if (argc != 2) {
        std::cerr << "usage: make-broadcast FOLDER > CAPTURE\n";
        return 2;
    }
    std::cout << Broadcast(argv[1]) << std::flush;
    return std::cout ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << "make-broadcast: " << error.what() << '\n';
    return 1;
}
