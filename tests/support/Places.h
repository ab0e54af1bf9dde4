#pragma once

#include <string>

// Where things are. The names of folders are in one small object, so that what a compiler made of all others is of use
// in any clone.

/// A file or folder of the tree.
std::string TreeFile(const std::string& name);
/// One of the test data.
std::string DataFile(const std::string& name = {});
/// One of the build's.
std::string BuiltFile(const std::string& name);

/// How the inspector is run, and the program that makes the sample broadcast.
extern const char* const k_inspect;
extern const char* const k_makeBroadcast;
/// What runs programs of another architecture, with its options; else empty.
extern const char* const k_emulator;
