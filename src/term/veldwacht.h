// Guard around a dialog that may run while a caller prepares or edits a field: settings, flags, last key and
// working text come back when it ends. Inside, no keys are allowed and no range is set.
#pragma once
#include "term/ingave.h"

namespace zg {

class VELDWACHT {
public:
    VELDWACHT() : stand_(VELDBEWAAR()) {
        INSTEL.toe.reset();
        INSTEL.minimum = 0.0;
        INSTEL.maximum = -1.0;
        INSTEL.check = 0;
    }
    ~VELDWACHT() {
        if (stand_)
            VELDHERSTEL(stand_);
    }
    VELDWACHT(const VELDWACHT&) = delete;
    VELDWACHT& operator=(const VELDWACHT&) = delete;

private:
    Veldstand* stand_;
};

} // namespace zg
