#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Bench.h"

// What a byte may cost: every entry point is given, three times on the same object, documents, tables and
// messages of one shape repeated, the shapes that cost it most. Told are CPU time, bytes left behind and log
// lines at the default level, each per byte; and the time for ten times the work.
namespace growth {

/// What is given to an entry point, and what it keeps of it.
struct CTarget {
    virtual ~CTarget() = default;
    virtual void Parse(const std::string& input) = 0;
};

template <class TParser>
struct CXmlTarget : CTarget {
    CXmlTarget() { parser.Create(); }
    ~CXmlTarget() override { parser.Destroy(); }
    void Parse(const std::string& input) override
    {
        parser.Parse(input.data(), static_cast<unsigned int>(input.size()));
    }
    TParser parser;
};

/// What takes an item of bytes.
template <class TParser>
struct CItemTarget : CTarget {
    CItemTarget() { parser.Create(); }
    ~CItemTarget() override { parser.Destroy(); }
    void Parse(const std::string& input) override
    {
        IParse::SItem item = Item(input);
        parser.Parse(&item);
    }
    TParser parser;
};

template <class T>
std::unique_ptr<CTarget> Make()
{
    return std::make_unique<T>();
}

constexpr std::size_t k_size = 32000;

/// As often as it fits.
std::string Repeat(const std::string& unit, std::size_t size = k_size);

/// "A>B>C" as open tags, or as the end tags of them.
std::string Open(const std::string& path);
std::string Close(const std::string& path);

/// A number of `count` bytes, the most significant first.
std::string Bytes(unsigned int value, int count);

struct SInput {
    std::string name;
    std::string bytes;
};

/// Documents of one element repeated. `rows`: a path of parents, then the elements that are tried there.
std::vector<SInput> Documents(const std::vector<std::vector<std::string>>& rows);

/// The most that an input costs, of each kind of cost, and which input it is.
void RegisterAttack(const std::string& name, std::unique_ptr<CTarget> (*make)(), std::vector<SInput> (*inputs)());

/// One parse by an object made for it, of an input of n elements.
void Grow(benchmark::State& state, std::unique_ptr<CTarget> (*make)(), const std::string& input);

/// Runs of `run` with 1,000, 10,000 and 100,000 elements.
void RegisterGrowth(const std::string& name, const std::function<void(benchmark::State&, int)>& run);

/// Documents of one element n times; "%" in it is its number.
void RegisterGrowth(const std::string& name, std::unique_ptr<CTarget> (*make)(), const std::string& path,
                    const std::string& element);

}  // namespace growth
