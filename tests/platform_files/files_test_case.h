// What every test of the file manager starts with.
#pragma once

#include "platform/files/file_manager.h"
#include "tests/support/temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace zelmora::platform {

class FilesTestCase : public testing::Test {
  protected:
    using Items = std::vector<std::string>;

    test::TemporaryDirectory _folder;
    FileManager& _files = FileManager::defaultManager();
};

/// The errno of a Status or Result, 0 for success.
template<typename Answer>
int codeOf(const Answer& answer) {
    return answer.ok() ? 0 : answer.error().code;
}

/// The contents at `path` as chars, "<errno>" when they cannot be read.
inline std::string contentsOf(FileManager& files, const std::string& path) {
    const auto contents = files.contentsAtPath(path);
    return contents.ok() ? std::string(charsOf(contents.value()))
                         : "<" + std::to_string(contents.error().code) + ">";
}

} // namespace zelmora::platform
