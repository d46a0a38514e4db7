#ifndef KVX3D_REFERENCE_HOST_RUN_INTERRUPT_H
#define KVX3D_REFERENCE_HOST_RUN_INTERRUPT_H

namespace host {

/// Lets a run end in an orderly way. While the object exists, the first Ctrl-C (SIGINT) or SIGTERM,
/// which batch systems send, is only recorded; the second one ends the program at once. Only one
/// object may exist at a time.
class Interrupt {
public:
    Interrupt();
    /// Restores the previous handlers of both signals.
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// True after the first signal.
    bool Requested() const;

    static constexpr int exitCode = 130;  ///< that of a shell for a program ended by SIGINT

private:
    void (*previousInterrupt)(int);
    void (*previousTermination)(int);
};

}  // namespace host

#endif
