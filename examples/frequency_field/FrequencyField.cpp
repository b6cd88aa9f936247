#include "FrequencyField.h"

namespace {

// Megahertz are never grouped, so this form is read back; steps of 10 Hz are what it can hold.
QString textFor(const Frequency& frequency)
{
    if (frequency.isNull()) {
        return {};
    }
    QString text = frequency.asMhzString(true, 5);
    Frequency::AdjustTrailingZeros(text, 3, 5);
    return text;
}

bool isAllowed(const Frequency& frequency)
{
    return frequency >= Frequency::getMinAllowedFrequency() &&
           frequency <= Frequency::getMaxAllowedFrequency();
}

} // namespace

FrequencyField::FrequencyField(QWidget* parent) : QLineEdit(parent)
{
    setPlaceholderText(m_frequency.toString());
    connect(this, &QLineEdit::editingFinished, this, &FrequencyField::readText);
}

void FrequencyField::setFrequency(const Frequency& frequency)
{
    const bool isOther = frequency != m_frequency;
    m_frequency = frequency;
    setText(textFor(frequency));
    if (isOther) {
        emit frequencyChanged(frequency);
    }
}

void FrequencyField::readText()
{
    const QString typed = text().trimmed();
    // Leaving the field must not round a frequency that nobody has touched.
    if (typed == textFor(m_frequency)) {
        return;
    }
    if (typed.isEmpty()) {
        setFrequency(Frequency());
        return;
    }
    bool isUnderstood = false;
    const Frequency read = Frequency::fromString(typed, &isUnderstood, Frequency::MHz);
    setFrequency(isUnderstood && isAllowed(read) ? read : m_frequency);
}
