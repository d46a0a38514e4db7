#include "tests/support/output_capture.h"

#include <iostream>

OutputCapture::OutputCapture() : oldOut(std::cout.rdbuf(&out)), oldErr(std::cerr.rdbuf(&err)) {}

OutputCapture::~OutputCapture() {
    std::cout.rdbuf(oldOut);
    std::cerr.rdbuf(oldErr);
}
