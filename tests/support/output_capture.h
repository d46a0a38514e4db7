#ifndef KVX3D_TESTS_SUPPORT_OUTPUT_CAPTURE_H
#define KVX3D_TESTS_SUPPORT_OUTPUT_CAPTURE_H

#include <sstream>
#include <string>

/// Redirects std::cout and std::cerr during its lifetime and stores what is written to each.
class OutputCapture {
public:
    OutputCapture();
    ~OutputCapture();
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    std::string Out() const { return out.str(); }
    std::string Err() const { return err.str(); }
    /// The part of Out() that was flushed so far. Any output to std::cerr also flushes std::cout.
    std::string FlushedOut() const { return out.flushed; }

private:
    struct Buffer : std::stringbuf {
        int sync() override {
            flushed = str();
            return 0;
        }
        std::string flushed;
    };

    Buffer out;
    Buffer err;
    std::streambuf* oldOut;
    std::streambuf* oldErr;
};

#endif
