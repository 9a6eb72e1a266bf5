#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "base/bytes.h"

namespace bmr::test {

/// A known-answer file of tests/data, read once: a loop over a part of it needs the whole to stay.
inline const nlohmann::json& LoadVectors(const std::string& name) {
    static std::map<std::string, nlohmann::json> files;
    const auto [file, isNew] = files.try_emplace(name);
    if (isNew) {
        std::ifstream text(std::string(BMR_TEST_DATA) + "/" + name);
        if (!text) throw std::runtime_error("missing test data " + name);
        file->second = nlohmann::json::parse(text);
    }
    return file->second;
}

/// Bytes of a hex string that must be good.
inline Bytes Hex(const std::string& hex) {
    const auto bytes = FromHex(hex);
    if (!bytes) throw std::runtime_error("bad hex " + hex);
    return *bytes;
}

}  // namespace bmr::test
