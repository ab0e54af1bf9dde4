#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "common/Parse.h"
#include "common/ParseXML.h"
#include "support/Gzip.h"

// A benchmark is named SUBJECT/KIND[/VARIANT]/SIZE. Where KIND is "floor" it is what the others of the
// same subject, variant and size are told as a ratio of.

/// A service list table of `services` services as a broadcaster writes it, header included.
std::string MakeSlt(int services, bool gzip, unsigned char version = 1);

IParse::SItem Item(const std::string& table);

/// What libxml2 and zlib need for the bytes of an LLS table, reading nothing.
void Floor(const std::string& table);

/// Inflates what is there from `begin` on, and lets go of what comes out; its size.
std::size_t Inflated(const std::string& compressed, std::size_t begin = 0);

/// The same for a document as it is.
void FloorDocument(const std::string& document);

/// What is told of a benchmark beside its time.
struct SFacts {
    std::size_t bytes;
    std::uint64_t allocations;
};
std::map<std::string, SFacts>& Facts();
/// Objects allocated since the start of the program.
std::uint64_t Allocations();

/// Least time of a run over a real document, in seconds: short, and repeated the more.
constexpr double k_realTime = 0.005;

/// The statistic that is told of the repetitions: other work on the machine only ever adds to a time.
double Least(const std::vector<double>& times);

/// Registers the run over one table, of at least `seconds`; 0: what the command line says.
void Register(const std::string& name, void (*run)(const std::string&), const std::string& table, double seconds = 0);

/// A service list table from nothing to services in the channel map, and back to nothing.
void ParseSlt(const std::string& table);

/// Feeds a table to a parser that is made, and destroys it.
template <class TTable>
void Feed(TTable& parser, const std::string& table)
{
    IParse::SItem item = Item(table);
    parser.Parse(&item);
    parser.Destroy();
}

/// A document from nothing to records, and back to nothing.
template <class TParser>
void ParseDocument(const std::string& document)
{
    TParser parser;
    parser.Create();
    static_cast<XMLBase&>(parser).Parse(document.data(), static_cast<unsigned int>(document.size()), false);
    parser.Destroy();
}

/// The most expensive inputs of the entry points that were attacked.
void PrintAttacks();
