#include "felles/Fuzzfunn.h"

#include <gtest/gtest.h>

// Raw-data lines that fuzzing found faults with are read without a crash.
TEST(Fuzzfunn, Radata)
{
    for (auto& [fil, data] : test::fuzzfunn("store/fuzz-funn/radata")) {
        SCOPED_TRACE(fil.toStdString());
        ovelse::radata(data);
    }
}
