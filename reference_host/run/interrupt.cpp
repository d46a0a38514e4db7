#include "reference_host/run/interrupt.h"

#include <csignal>

namespace host {

namespace {

volatile std::sig_atomic_t requested = 0;

extern "C" void RecordInterrupt(int) {
    requested = 1;
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

}  // namespace

Interrupt::Interrupt() {
    requested = 0;
    previousInterrupt = std::signal(SIGINT, RecordInterrupt);
    previousTermination = std::signal(SIGTERM, RecordInterrupt);
}

Interrupt::~Interrupt() {
    std::signal(SIGINT, previousInterrupt);
    std::signal(SIGTERM, previousTermination);
}

bool Interrupt::Requested() const {
    return requested != 0;
}

}  // namespace host
