// SPDX-License-Identifier: MIT

#include "Dispatch_p.h"

#include <gtest/gtest.h>

namespace {

char FormPortable(int& calls) {
    ++calls;
    return 'p';
}
char FormAvx2(int& calls) {
    ++calls;
    return 'a';
}

TEST(Dispatch, CallsOneFormOnceAndPassesItsArgumentsOn) {
    int calls = 0;
    char const form = trammel_detail::Dispatch<FormPortable, FormAvx2>(calls);
    EXPECT_EQ(form, trammel_detail::HasWideVectors() ? 'a' : 'p');
    EXPECT_EQ(calls, 1);
}

TEST(Dispatch, CallsThePortableFormWhileTestsAskForIt) {
    bool const hasBoth = trammel_detail::UsePortableForms(true);
    int calls = 0;
    EXPECT_FALSE(trammel_detail::HasWideVectors());
    EXPECT_EQ((trammel_detail::Dispatch<FormPortable, FormAvx2>(calls)), 'p');
    EXPECT_EQ(trammel_detail::UsePortableForms(false), hasBoth);
    EXPECT_EQ(trammel_detail::HasWideVectors(), hasBoth);
    EXPECT_EQ((trammel_detail::Dispatch<FormPortable, FormAvx2>(calls)), hasBoth ? 'a' : 'p');
}

} // namespace
