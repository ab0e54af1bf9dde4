#include "Growth.h"

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "lls/ParseLLS.h"
#include "platform/Platform.h"

namespace growth {

std::string Repeat(const std::string& unit, std::size_t size)
{
    std::string text;
    text.reserve(size);
    while (text.size() + unit.size() <= size) {
        text += unit;
    }
    return text;
}

std::string Open(const std::string& path)
{
    std::string text;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('>', at), path.size());
        text += "<" + path.substr(at, end - at) + ">";
        at = end + 1;
    }
    return text;
}

std::string Close(const std::string& path)
{
    std::string text;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('>', at), path.size());
        const std::string tag = path.substr(at, end - at);
        text.insert(0, "</" + tag.substr(0, tag.find(' ')) + ">");
        at = end + 1;
    }
    return text;
}

std::vector<SInput> Documents(const std::vector<std::vector<std::string>>& rows)
{
    std::vector<SInput> inputs;
    const auto add = [&inputs](const std::string& name, const std::string& path, const std::string& body) {
        inputs.push_back({name, Open(path) + body + Close(path)});
    };
    const std::string& root = rows[0][0];
    for (const char* unit : {"<a/>", "x<a/>", "<a></a>", "<a b=''/>", "<a b='1' c='2' d='3'/>", "<!---->x", "<?a?>x",
                             "<p:a/>", "<a p:b=''/>", "&#65;", "]]&gt;"}) {
        add(unit, root, Repeat(unit));
    }
    std::string tag = "<a";
    for (int i = 0; i < 1000; ++i) {
        tag += " a" + std::to_string(i) + "=''";
        if (i == 399) {
            add("400 attributes", root, Repeat(tag + "/>"));
        }
    }
    add("1000 attributes once", root, tag + "/>");
    for (const std::vector<std::string>& row : rows) {
        for (std::size_t i = 1; i < row.size(); ++i) {
            const std::string& element = row[i];
            const std::string name = element.substr(0, element.find(' '));
            const std::string in = row[0].substr(row[0].rfind('>') + 1) + "/";
            add(in + element, row[0], Repeat("<" + element + "/>"));
            add(in + "x" + element, row[0], Repeat("x<" + element + "/>"));
            add(in + element + " text", row[0], Repeat("<" + element + ">x</" + name + ">"));
            std::string deep;
            for (int d = 0; d < 200; ++d) {
                deep += "<" + element + ">";
            }
            deep += Repeat("<" + element + "/>", 4000);
            for (int d = 0; d < 200; ++d) {
                deep += "</" + name + ">";
            }
            add(in + element + " nested", row[0], deep);
            inputs.push_back({in + element + " entities", "<!DOCTYPE a [<!ENTITY e ''>]>" + Open(row[0]) + "<" +
                                                              element + " id='" + Repeat("x&e;") + "'>" +
                                                              Repeat("x&e;") + "</" + name + ">" + Close(row[0])});
            inputs.push_back({in + element + " namespace",
                              Open(row[0]) + "<a xmlns='" + std::string(k_size, 'n') + "'/>" + Close(row[0])});
            // All in one long namespace.
            std::string path = row[0];
            path.insert(std::min(path.find('>'), path.size()), " xmlns='" + std::string(k_size, 'n') + "'");
            inputs.back().bytes = Open(path) + Repeat("<" + element + "/>") + Close(path);
        }
    }
    return inputs;
}

std::string Bytes(unsigned int value, int count)
{
    std::string text;
    while (count-- > 0) {
        text += static_cast<char>(value >> 8 * count);
    }
    return text;
}

// ---- measuring

namespace {

unsigned long long g_lines = 0;

double Now()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

double Held()
{
    return static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd);
}

struct SCost {
    double time = 1e30;
    double left = 0;
    double third = 1e30;
    double leftByThird = 0;
    double lines = 0;
};

SCost Measure(std::unique_ptr<CTarget> (*make)(), const std::string& input)
{
    SCost cost;
    for (int run = 0; run < 3; ++run) {
        const std::unique_ptr<CTarget> target = make();
        double held[4];
        double time[4];
        held[0] = Held();
        const unsigned long long lines = g_lines;
        for (int i = 1; i <= 3; ++i) {
            const double start = Now();
            target->Parse(input);
            time[i] = Now() - start;
            held[i] = Held();
            if (i == 1) {
                cost.lines = static_cast<double>(g_lines - lines);
            }
        }
        cost.time = std::min(cost.time, time[1]);
        cost.third = std::min(cost.third, time[3]);
        cost.left = held[1] - held[0];
        cost.leftByThird = held[3] - held[0];
    }
    const double bytes = static_cast<double>(input.size());
    return {cost.time / bytes, cost.left / bytes, cost.third / bytes, cost.leftByThird / bytes, cost.lines / bytes};
}

/// The worst that was found for an entry point.
struct SAttacks {
    std::string name;
    double most[5];
    std::string inputs[5];
};

std::vector<SAttacks> g_attacks;

/// The most of each, over the inputs, and which input it was.
void Attack(benchmark::State& state, const std::string& name, std::unique_ptr<CTarget> (*make)(),
            const std::vector<SInput>& inputs)
{
    static const SPlatform k_counting = {[](int, const char*, const char*, va_list) { ++g_lines; }, nullptr};
    SetPlatform(&k_counting);
    SetLogPriority(LOG_PRIORITY_INFO);
    static constexpr double SCost::*k_what[] = {&SCost::time, &SCost::third, &SCost::left, &SCost::leftByThird,
                                                &SCost::lines};
    SCost most{0, 0, 0, 0, 0};
    std::string names[5];
    for (auto _ : state) {
        for (const SInput& input : inputs) {
            const SCost cost = Measure(make, input.bytes);
            if (std::getenv("VYR_BENCH_ALL")) {
                std::printf("%8.1f %8.1f %8.1f %8.1f %8.3f  %s\n", cost.time, cost.third, cost.left, cost.leftByThird,
                            cost.lines, input.name.c_str());
            }
            for (int i = 0; i < 5; ++i) {
                if (cost.*k_what[i] > most.*k_what[i]) {
                    most.*k_what[i] = cost.*k_what[i];
                    names[i] = input.name;
                }
            }
        }
    }
    SetLogPriority(LOG_PRIORITY_SILENT);
    SetPlatform(nullptr);
    SAttacks row{name, {}, {}};
    for (int i = 0; i < 5; ++i) {
        row.most[i] = most.*k_what[i];
        row.inputs[i] = names[i];
    }
    g_attacks.push_back(row);
}

}  // namespace

void RegisterAttack(const std::string& name, std::unique_ptr<CTarget> (*make)(), std::vector<SInput> (*inputs)())
{
    benchmark::RegisterBenchmark(("attack/" + name).c_str(), [name, make, inputs](benchmark::State& state) {
        Attack(state, name, make, inputs());
    })->Iterations(1);
}

void Grow(benchmark::State& state, std::unique_ptr<CTarget> (*make)(), const std::string& input)
{
    TCParseLLS::SetDecompressLLS(false);  // what is compressed has a limit
    for (auto _ : state) {
        make()->Parse(input);
    }
    TCParseLLS::SetDecompressLLS(true);
}

void RegisterGrowth(const std::string& name, const std::function<void(benchmark::State&, int)>& run)
{
    for (const int n : {1000, 10000, 100000}) {
        benchmark::RegisterBenchmark(("growth/" + name + "/" + std::to_string(n)).c_str(),
                                     [run, n](benchmark::State& state) { run(state, n); })
            ->Repetitions(3)
            ->ComputeStatistics("least", Least)
            ->ReportAggregatesOnly();
    }
}

void RegisterGrowth(const std::string& name, std::unique_ptr<CTarget> (*make)(), const std::string& path,
                    const std::string& element)
{
    RegisterGrowth(name, [=](benchmark::State& state, int n) {
        const std::size_t mark = element.find('%');
        std::string body;
        for (int i = 0; i < n; ++i) {
            body += mark == std::string::npos ? element
                                              : element.substr(0, mark) + std::to_string(i) + element.substr(mark + 1);
        }
        Grow(state, make, Open(path) + body + Close(path));
    });
}

}  // namespace growth

void PrintAttacks()
{
    static constexpr const char* k_names[] = {"ns per byte", "... third time", "bytes left per byte", "... after three",
                                              "log lines per byte"};
    for (const growth::SAttacks& attack : growth::g_attacks) {
        std::printf("\n%s\n", attack.name.c_str());
        for (int i = 0; i < 5; ++i) {
            std::printf("  %-20s %9.2f  %s\n", k_names[i], attack.most[i], attack.inputs[i].c_str());
        }
    }
}
