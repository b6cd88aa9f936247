#pragma once

/** Owns the number of an open file of the system's, and closes it. */
class Descriptor
{
public:
    /** @param number  as open() gives it; negative for none. */
    explicit Descriptor(int number = -1) : m_number(number) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor() { close(); }

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }

    /** Leaves errno as it is: what failed before counts. */
    void close();

private:
    int m_number;
};
