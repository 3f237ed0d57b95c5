#pragma once

#include <cstddef>
#include <string>

// A stream that either reads or writes; ReadWrite operations of value types transfer in
// the stream's direction.
class IPMStream {
public:
    virtual ~IPMStream() = default;
    virtual bool IsReading() const = 0;
    // Reading: replaces `text` by the next string of the stream (empty at its end).
    // Writing: appends `text`.
    virtual void XferString(std::string& text) = 0;
};

// A stream over memory, for identities the host keeps and for tests.
class MemoryStream : public IPMStream {
public:
    enum class Mode { writing, reading };
    explicit MemoryStream(Mode mode = Mode::writing) : mode_(mode) {}
    bool IsReading() const override { return mode_ == Mode::reading; }
    void XferString(std::string& text) override;
    void rewindForReading() {
        mode_ = Mode::reading;
        next_ = 0;
    }
    const std::string& bytes() const { return bytes_; }

private:
    Mode mode_;
    std::string bytes_;
    std::size_t next_ = 0;
};
