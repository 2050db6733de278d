#pragma once

#include <string>

#include <nlohmann/json.hpp>

// A file of the test fixtures, parsed. It is read once.
const nlohmann::json& jsonFixture(const std::string& name);

// One table of "protocol-tables.json".
const nlohmann::json& protocolTable(const std::string& name);
