#pragma once

#include <sdk/service/ifilememorycontrol.h>

#include <gmock/gmock.h>

#include <utility>

namespace tarn::tests {

/// Its memory is available unless a test says otherwise.
class MockFileMemoryControl : public sdk::service::IFileMemoryControl {
public:
    MockFileMemoryControl() { ON_CALL(*this, isAvailable).WillByDefault(testing::Return(true)); }

    MOCK_METHOD(bool, isAvailable, (), (override));
    MOCK_METHOD(void, fileList, (sdk::Completion<std::vector<FileInfo>>), (override));
    MOCK_METHOD(void, spaceInfo, (sdk::Completion<SpaceInfo>), (override));
    MOCK_METHOD(void, readFile, (const FileInfo&, sdk::Completion<std::vector<std::uint8_t>>), (override));
    MOCK_METHOD(void, writeFile, (std::string, std::vector<std::uint8_t>, sdk::Completion<>), (override));
    MOCK_METHOD(void, deleteFile, (const FileInfo&, sdk::Completion<>), (override));
};

} // namespace tarn::tests
