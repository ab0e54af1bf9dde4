#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "common/Parse.h"
#include "support/Gzip.h"

// A benchmark is named SUBJECT/KIND[/VARIANT]/SIZE. Where KIND is "floor" it is what the others of the
// same subject, variant and size are told as a ratio of.

/// A service list table of `services` services as a broadcaster writes it, header included.
std::string MakeSlt(int services, bool gzip, unsigned char version = 1);

IParse::SItem Item(const std::string& table);

/// What libxml2 and zlib need for the bytes of an LLS table, reading nothing.
void Floor(const std::string& table);

/// Inflates, and lets go of what comes out; its size.
std::size_t Inflated(const std::string& compressed);

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

/// Registers the run over one table.
void Register(const std::string& name, void (*run)(const std::string&), const std::string& table);

/// The most expensive inputs of the entry points that were attacked.
void PrintAttacks();
