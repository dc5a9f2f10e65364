// The progress label of a running export. After every written row the export
// hands over the row counter; the label is repainted and pending events are let
// run at most every few hundredths of a second, and the last text is shown
// exactly when the cycle's rows are done.
#pragma once

#include "platform/dialogs/Vindu.h"

#include <chrono>

namespace eksport {

class Fremdrift {
public:
    explicit Fremdrift(ui::Vindu& vindu) : vindu_(vindu) {}

    // The row counter (already increased) of cycle syklus. Returns true when pending events
    // were let run, so that the caller can read the window's controls anew.
    bool rad(long long rad, int syklus);
    // Shows the last counter handed over.
    void vis();

private:
    using Klokke = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds Intervall{40};

    ui::Vindu& vindu_;
    Klokke::time_point sist_ = Klokke::now();
    long long rad_ = 0;
    int syklus_ = 0;
    bool vist_ = true;
};

} // namespace eksport
