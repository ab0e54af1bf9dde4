// Reads large captures with the inspector, as its users run it, and tells the processor time as a ratio to a bare loop
// over the same file that adds up the bytes of its packets with libpcap; and the memory that it takes, beside what it
// takes for 1 % of the capture.
// Usage: vyr-bench-inspect [MEGABYTES], 256 unless said.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <pcap/pcap.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "inspect/Packets.h"
#include "support/Places.h"

namespace {

using namespace packets;

std::string ReadData(const std::string& name)
{
    std::ifstream file(DataFile(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

enum class EKind { SAME, DIFFERENT, MEDIA };

/// A service list of one service, and its signalling over and over: of DIFFERENT, each package has an MPD and a
/// TOI of its own; of MEDIA, 16 packets of four LCT sessions follow each, in turn.
void WriteCapture(const std::string& name, std::size_t size, EKind kind)
{
    const std::string list =
        "<SLT bsid='1'><Service serviceId='1' sltSvcSeqNum='0' protected='false' hidden='false' "
        "broadbandAccessRequired='false' majorChannelNo='1' minorChannelNo='1' serviceCategory='1' "
        "shortServiceName='BENCH'><BroadcastSvcSignaling slsProtocol='1' slsMajorProtocolVersion='1' "
        "slsMinorProtocolVersion='0' slsDestinationIpAddress='239.255.7.1' slsDestinationUdpPort='6001' "
        "slsSourceIpAddress='192.0.2.10'/></Service></SLT>";
    const std::string package = ReadData("route/gpac-a2-multi-service-239.255.7.1-30101-sls3.mime");
    const std::string key = "publishTime=\"2026-11-21T02:0";
    const std::size_t at = package.find(key) + key.size();
    if (at < key.size() || at + 8 > package.size()) {
        std::fprintf(stderr, "the sample has no publishTime\n");
        std::exit(1);
    }
    std::ofstream file(name, std::ios::binary);
    std::size_t written = 0;
    for (unsigned round = 0; written < size; ++round) {
        CCapture capture(1);
        if (round == 0) {
            capture.AddLls(std::string("\x01\x00\x00\x01", 4) + list);
        }
        const std::size_t header = round == 0 ? 0 : CCapture(1).Bytes().size();
        for (unsigned i = 0; i < 64; ++i) {
            std::string object = package;
            const unsigned number = kind == EKind::DIFFERENT ? round * 64 + i : 0;
            for (unsigned digit = 0, rest = number; digit < 8; ++digit, rest /= 10) {
                // 2026-11-21T02:0m:ss.mmm, the last digits first; what is no digit stays.
                char& place = object[at + 7 - digit];
                place = place >= '0' && place <= '9' ? static_cast<char>('0' + rest % (digit == 4 ? 6 : 10)) : place;
            }
            SLct fields;
            fields.toi = 1 + number;
            fields.length = static_cast<int>(object.size());
            fields.close = true;
            capture.AddSession(Lct(fields, object), 6001);
            for (unsigned j = 0; kind == EKind::MEDIA && j < 16; ++j) {
                const unsigned place = (round * 64 + i) * 4 + j / 4;  // among the packets of its LCT session
                const std::string data(1400, 'd');
                const SLct media = {place / 500 + 1, place % 500 * 1400, 500 * 1400, false, 10 + j % 4};
                capture.AddSession(Lct(media, data), 6001);
            }
        }
        const std::string bytes = capture.Bytes().substr(header);
        file << bytes;
        written += bytes.size();
    }
}

double Seconds(const rusage& usage)
{
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

/// What a child that does the work took; it ends the program when the child fails.
template <class TWork>
rusage Used(const TWork& work)
{
    const pid_t child = fork();
    if (child == 0) {
        work();
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) > 1) {
        std::fprintf(stderr, "a run failed\n");
        std::exit(1);
    }
    return usage;
}

[[noreturn]] void BareLoop(const std::string& name)
{
    char error[PCAP_ERRBUF_SIZE] = "";
    pcap_t* capture = pcap_open_offline(name.c_str(), error);
    pcap_pkthdr* header = nullptr;
    const unsigned char* bytes = nullptr;
    unsigned long long sum = 0;
    while (capture != nullptr && pcap_next_ex(capture, &header, &bytes) == 1) {
        for (unsigned i = 0; i < header->caplen; ++i) {
            sum += bytes[i];
        }
    }
    _exit(sum != 0 ? 0 : 2);
}

[[noreturn]] void Inspector(const std::vector<std::string>& arguments)
{
    std::vector<char*> argv = {const_cast<char*>("vyr-atsc30-inspect")};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    execv(k_inspect, argv.data());
    _exit(2);
}

/// Tells the least time of each run, per byte and as a ratio of the bare loop's over the same capture.
class CRatios : public benchmark::ConsoleReporter {
  public:
    explicit CRatios(std::size_t bytes) : m_bytes(bytes) {}
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                const double time = run.real_accumulated_time / static_cast<double>(run.iterations);
                const auto [least, isNew] = m_least.try_emplace(run.run_name.function_name, time);
                least->second = isNew || time < least->second ? time : least->second;
            }
        }
    }
    void Print() const
    {
        std::printf("\n%-20s %10s %10s %10s\n", "capture", "s", "MB/s", "of bare");
        for (const auto& [name, time] : m_least) {
            const auto bare = m_least.find(name.substr(0, name.find('/')) + "/bare");
            std::printf("%-20s %10.2f %10.0f %10.1f\n", name.c_str(), time, static_cast<double>(m_bytes) / time / 1e6,
                        bare != m_least.end() ? time / bare->second : 0);
        }
    }

  private:
    std::size_t m_bytes;
    std::map<std::string, double> m_least;
};

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const std::size_t bytes = (argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 256) * 1000000;
    std::string folder = "/tmp/vyr-bench-XXXXXX";
    if (bytes == 0 || mkdtemp(folder.data()) == nullptr) {
        return 2;
    }
    std::map<std::string, std::pair<long, long>> memory;
    for (const auto& [kind, what] : std::map<std::string, EKind>{
             {"same", EKind::SAME}, {"different", EKind::DIFFERENT}, {"media", EKind::MEDIA}}) {
        const std::string capture = folder + '/' + kind;
        const std::string page = folder + "/page";
        WriteCapture(capture, bytes, what);
        WriteCapture(folder + "/part", bytes / 100, what);
        const std::map<std::string, std::vector<std::string>> runs = {{"bare", {}},
                                                                      {"text", {capture}},
                                                                      {"json", {"--json", capture}},
                                                                      {"page", {"--html", page, "-q", capture}}};
        for (const auto& [form, arguments] : runs) {
            if (!arguments.empty()) {
                std::vector<std::string> part = arguments;
                part.back() = folder + "/part";
                memory[kind + '/' + form] = {Used([&] { Inspector(part); }).ru_maxrss,
                                             Used([&, arguments = arguments] { Inspector(arguments); }).ru_maxrss};
            }
            benchmark::RegisterBenchmark((kind + '/' + form).c_str(),
                                         [capture, arguments = arguments](benchmark::State& state) {
                                             for ([[maybe_unused]] const auto step : state) {
                                                 state.SetIterationTime(Seconds(Used([&, arguments = arguments] {
                                                     arguments.empty() ? BareLoop(capture) : Inspector(arguments);
                                                 })));
                                             }
                                         })
                ->UseManualTime()
                ->Iterations(1)
                ->Repetitions(3)
                ->Unit(benchmark::kMillisecond);
        }
    }
    CRatios ratios(bytes);
    benchmark::RunSpecifiedBenchmarks(&ratios);
    ratios.Print();
    std::printf("\n%-20s %10s %10s\n", "capture", "kB of 1%", "kB of all");
    for (const auto& [name, kilobytes] : memory) {
        std::printf("%-20s %10ld %10ld\n", name.c_str(), kilobytes.first, kilobytes.second);
    }
    for (const char* file : {"/same", "/different", "/media", "/part", "/page"}) {
        std::remove((folder + file).c_str());
    }
    rmdir(folder.c_str());
    return 0;
}
