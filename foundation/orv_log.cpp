#include "foundation/orv_base.h"
#include "foundation/wide_text.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <cwchar>

namespace zelmora {

namespace {

constexpr size_t prefixCapacity = 64;
constexpr size_t messageCapacity = 512;

std::atomic<uint32_t> nextLineNumber = 0;

void formatPrefix(std::span<wchar_t> buffer) {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    const auto lineNumber = static_cast<int>(nextLineNumber++);
    std::swprintf(buffer.data(), buffer.size(), L"%02d/%02d/%02d %02d:%02d:%02d[%d] ",
                  local.tm_year - 100, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                  local.tm_sec, lineNumber);
}

} // namespace

void OrvLog(const wchar_t* format, ...) noexcept {
    std::array<wchar_t, prefixCapacity> prefix = {};
    formatPrefix(prefix);

    std::array<wchar_t, messageCapacity> message;
    std::va_list arguments;
    va_start(arguments, format);
    formatWide(message, format, arguments);
    va_end(arguments);

    // Bytes, not wide characters: a stream takes only one kind, and other lines of the program are
    // bytes. One write keeps the line whole among those of other threads.
    std::array<char, (prefixCapacity + messageCapacity) * longestUTF8> line;
    char* end = line.data();
    for (const wchar_t* c = prefix.data(); *c != L'\0'; ++c)
        end = putUTF8(*c, end);
    for (const wchar_t* c = message.data(); *c != L'\0'; ++c)
        end = putUTF8(*c, end);
    *end++ = '\n';
    std::fwrite(line.data(), 1, static_cast<size_t>(end - line.data()), stdout);
}

} // namespace zelmora
