#pragma once

#include "ZelMain/Frequency.h"

#include <QLineEdit>

/**
 * A field for one frequency.
 *
 * It takes what Frequency::fromString() does, a bare number for megahertz, in the range that
 * callers should allow. When the user leaves the field or presses return, the text becomes the
 * frequency in megahertz; of a text that is no such frequency the field goes back to what it had.
 * An empty field stands for no frequency and shows "Find Best".
 */
class FrequencyField : public QLineEdit
{
    Q_OBJECT

public:
    explicit FrequencyField(QWidget* parent = nullptr);

    Frequency frequency() const { return m_frequency; }

public slots:
    /** Shows @p frequency whatever its range; emits frequencyChanged() if it is another. */
    void setFrequency(const Frequency& frequency);

signals:
    void frequencyChanged(const Frequency& frequency);

private:
    void readText();

    Frequency m_frequency;
};
