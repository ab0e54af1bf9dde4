#pragma once

#include <cstdarg>

#include "Api.h"

/// Priorities of log messages, ascending. A message is shown when its priority is at least the
/// lowest one set with SetLogPriority.
enum ELogPriority { LOG_PRIORITY_DEBUG = 3, LOG_PRIORITY_INFO = 4, LOG_PRIORITY_ERROR = 6, LOG_PRIORITY_SILENT = 8 };

/// What the library needs from the system it runs on. Both functions may be called from every
/// thread that calls the library, and when memory is out. Nothing of the library is locked then that they could
/// need: they may call it, but not change or destroy the object that is at work. They must not throw.
struct SPlatform {
    /// Prints one message. The format already carries the prefix (tag, function, line); `tag` is
    /// given again for systems that keep it apart. `arguments` is valid during the call only.
    /// Null: messages are dropped.
    void (*log)(int priority, const char* tag, const char* format, va_list arguments);
    /// Reads the integer setting `key` into `*value`; false: no such key (`*value` untouched).
    /// Null: there are no settings.
    bool (*getInt)(const char* key, int* value);
};

/// Replaces the platform. The record is copied; null restores the default (syslog(3), settings from
/// the `key=value` file that the environment variable VYR_SETTINGS names, else /etc/vyr-atsc30.conf).
/// The default shows 100 lines a second from each place (function, line and format) and counts the rest:
/// "… > 4711 more lines within a second" follows when the second is over and the library logs again, the
/// platform is replaced, or the program ends. It keeps count of 512 places at once, without allocating. A
/// platform of the host's own gets every line.
/// To be called while no other thread is inside the library.
VYR_API void SetPlatform(const SPlatform* platform);

/// Sets the lowest priority that is shown; messages below it are never formatted and cost one
/// comparison. At start it is info, or what the environment variable VYR_LOG names (`debug`, `info`,
/// `error`, `silent`). May be called at any time, from any thread.
VYR_API void SetLogPriority(ELogPriority lowest);

/// Puts a folder in front of the two files of the platform that the library names itself: "/bin/preview",
/// whose presence marks every service of the guide as a preview, and "/opt/data/genre-cs.xml", the genre
/// names. The text is copied; null or empty, the default, is the root of the file system. For tests and
/// tools; to be called while no other thread is inside the library.
VYR_API void SetFileRoot(const char* root);
