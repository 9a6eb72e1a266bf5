#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "base/bytes.h"

namespace bmr::test {

/// A known-answer file of tests/data.
inline nlohmann::json LoadVectors(const std::string& name) {
    std::ifstream file(std::string(BMR_TEST_DATA) + "/" + name);
    if (!file) throw std::runtime_error("missing test data " + name);
    return nlohmann::json::parse(file);
}

/// Bytes of a hex string that must be good.
inline Bytes Hex(const std::string& hex) {
    const auto bytes = FromHex(hex);
    if (!bytes) throw std::runtime_error("bad hex " + hex);
    return *bytes;
}

}  // namespace bmr::test
