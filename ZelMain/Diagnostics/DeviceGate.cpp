#include "ZelMain/Diagnostics/DeviceGate.h"

namespace PkLogger {

bool DeviceGate::mayEnter(Visitor visitor) const
{
    if (m_depth > 0) {
        return m_owner == std::this_thread::get_id();
    }
    const Visitor other = visitor == Writer ? Call : Writer;
    return m_last == other || m_waiting[other] == 0;
}

template <typename Wait>
bool DeviceGate::enterAfter(Visitor visitor, Wait wait)
{
    std::unique_lock lock(m_mutex);
    ++m_waiting[visitor];
    const bool came = wait(lock, [this, visitor] { return m_closed || mayEnter(visitor); });
    --m_waiting[visitor];
    if (!came || m_closed) {
        m_changed.notify_all(); // the others need not let this one go first any more
        return false;
    }
    m_owner = std::this_thread::get_id();
    m_last = visitor;
    ++m_depth;
    return true;
}

bool DeviceGate::enter(Visitor visitor)
{
    return enterAfter(visitor, [this](auto& lock, auto condition) {
        m_changed.wait(lock, condition);
        return true;
    });
}

bool DeviceGate::enterWithin(std::chrono::milliseconds time)
{
    return enterAfter(Call, [this, time](auto& lock, auto condition) {
        return m_changed.wait_for(lock, time, condition);
    });
}

void DeviceGate::leave()
{
    const std::lock_guard lock(m_mutex);
    if (--m_depth > 0) {
        return;
    }
    m_inUse = nullptr;
    m_changed.notify_all();
}

bool DeviceGate::use(QIODevice* device)
{
    const std::lock_guard lock(m_mutex);
    if (m_closed) {
        return false;
    }
    m_inUse = device;
    return true;
}

QIODevice* DeviceGate::close()
{
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    m_changed.notify_all();
    return m_depth > 0 ? m_inUse : nullptr;
}

} // namespace PkLogger
