#pragma once

#include <string>

#include <nlohmann/json.hpp>

// A parsed file of the test fixtures, read once.
const nlohmann::json& jsonFixture(const std::string& name);

// A table of "protocol-tables.json".
const nlohmann::json& protocolTable(const std::string& name);
