#include "reference_host/interrupt.h"

#include <csignal>

namespace host {

namespace {

volatile std::sig_atomic_t requested = 0;

extern "C" void NoteInterrupt(int) {
    requested = 1;
    std::signal(SIGINT, SIG_DFL);
}

}  // namespace

Interrupt::Interrupt() {
    requested = 0;
    previous = std::signal(SIGINT, NoteInterrupt);
}

Interrupt::~Interrupt() {
    std::signal(SIGINT, previous);
}

bool Interrupt::Requested() const {
    return requested != 0;
}

}  // namespace host
