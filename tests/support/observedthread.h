#pragma once

#include <fstream>
#include <string>

#include <unistd.h>

namespace tarn::tests {

/// A thread of this program, the calling one, as others see it.
class ObservedThread {
public:
    /// Whether the thread is waiting for something at this moment.
    [[nodiscard]] bool isWaiting() const
    {
        std::ifstream file{"/proc/self/task/" + std::to_string(m_id) + "/stat"};
        std::string line;
        std::getline(file, line);
        const auto name = line.rfind(')'); // may have blanks and brackets; the state comes after it
        return name != std::string::npos && line.substr(name, 3) == ") S";
    }

private:
    pid_t m_id = ::gettid();
};

} // namespace tarn::tests
