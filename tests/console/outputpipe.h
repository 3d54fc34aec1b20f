#pragma once

#include <QByteArray>
#include <QProcess>

#include <array>

namespace tarn::console {

/// A pipe as the standard output of a program, which is read when a test says so: with little room, so that the program
/// is soon stuck in what it writes.
class OutputPipe {
public:
    static constexpr int size = 4096;

    /// A pipe with room for so many bytes; before them stand spaces.
    explicit OutputPipe(int room = size);
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;
    ~OutputPipe() { stopReading(); }

    /// Whoever writes into a full pipe is told so instead of waiting.
    void makeNonBlocking();

    /// Starts the program on one processor, where a thread that can go on does so before others that it wakes.
    void start(QProcess& process);

    /// Waits until something was written.
    void awaitWritten() const;

    /// Waits until something was written, and then nothing more for half a second.
    void awaitStuck() const;

    /// Reads all that comes until the program ends.
    [[nodiscard]] QByteArray drain() const;

    void stopReading();

private:
    [[nodiscard]] int held() const;

    int m_filled;
    std::array<int, 2> m_ends{-1, -1}; ///< to read from, to write to
};

} // namespace tarn::console
