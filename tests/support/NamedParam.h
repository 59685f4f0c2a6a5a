// Names for parameterized tests whose parameter has one.
#pragma once

#include <gtest/gtest.h>
#include <string>

namespace OrvaneTest {

// Last argument of INSTANTIATE_TEST_SUITE_P for parameters with a member `name`, letters, digits and
// underscores.
struct NamedParam {
    template <class Param>
    std::string operator()(const testing::TestParamInfo<Param>& test) const {
        return test.param.name;
    }
};

} // namespace OrvaneTest
