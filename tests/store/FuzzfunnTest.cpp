#include "felles/Fuzzfunn.h"

#include <gtest/gtest.h>

// Raw-data lines that fuzzing was seeded with or found faults with are read without a crash.
TEST(Radata, FuzzfunnLesesUtenKrasj)
{
    for (auto& [fil, data] : test::fuzzfunn("store/fuzz-funn/radata")) {
        SCOPED_TRACE(fil.toStdString());
        ovelse::radata(data);
    }
}
