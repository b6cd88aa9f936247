#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

class QIODevice;

namespace PkLogger {

/**
 * Lets one thread at a time work with the service's devices, and lets closing give up on it.
 *
 * The writer enters for each line, a call that opens or closes devices for all of its work; when
 * both wait they take turns. A thread that is inside may enter again. Once the gate is closed
 * nobody enters, who waits is turned away, and who is inside touches no further device.
 */
class DeviceGate
{
public:
    enum Visitor { Writer, Call };

    /** Waits for its turn. @return false when the gate is closed. */
    bool enter(Visitor visitor);

    /** For a call. @return false when @p time is over or the gate is closed. */
    bool enterWithin(std::chrono::milliseconds time);

    void leave();

    /**
     * Announces that the thread inside works with @p device next.
     *
     * @return false when the gate is closed; the device belongs to whoever closed it then.
     */
    bool use(QIODevice* device);

    /** @return the device that a thread inside still works with, null when there is none. */
    QIODevice* close();

private:
    bool mayEnter(Visitor visitor) const;

    template <typename Wait>
    bool enterAfter(Visitor visitor, Wait wait);

    std::mutex m_mutex; // guards all below; never held while a device works
    std::condition_variable m_changed;
    std::thread::id m_owner; // of nobody while m_depth is 0
    int m_depth = 0;
    int m_waiting[2] = {0, 0}; // by visitor
    Visitor m_last = Call;     // who was inside last
    bool m_closed = false;
    QIODevice* m_inUse = nullptr;
};

/** A visit behind the gate that ends with the scope. */
class GateVisit
{
public:
    GateVisit(DeviceGate& gate, DeviceGate::Visitor visitor)
        : m_gate(gate), m_isInside(gate.enter(visitor))
    {
    }
    ~GateVisit()
    {
        if (m_isInside) {
            m_gate.leave();
        }
    }
    GateVisit(const GateVisit&) = delete;
    GateVisit& operator=(const GateVisit&) = delete;

    bool isInside() const { return m_isInside; }

private:
    DeviceGate& m_gate;
    const bool m_isInside;
};

} // namespace PkLogger
