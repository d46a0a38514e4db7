#ifndef KVX3D_REFERENCE_HOST_RUN_INTERRUPT_H
#define KVX3D_REFERENCE_HOST_RUN_INTERRUPT_H

namespace host {

/// While it lives, the first Ctrl-C (SIGINT) or SIGTERM, as batch systems send it, is only noted,
/// so that a run can end in good order; the second ends the program at once. One object at a time.
class Interrupt {
public:
    Interrupt();
    /// Brings back what both signals did before.
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    bool Requested() const;

    static constexpr int exitCode = 130;  ///< what shells show for a program ended by SIGINT

private:
    void (*previousInterrupt)(int);
    void (*previousTermination)(int);
};

}  // namespace host

#endif
