#pragma once

#include "ports/Folders.h"

#include <filesystem>
#include <utility>

namespace zenka::test {

/// Folders below one that a test made.
class FoldersBelow final : public ports::Folders {
public:
    explicit FoldersBelow(std::filesystem::path root) : root_(std::move(root)) {}
    std::filesystem::path applicationSupport() const override { return root_ / "ZenkaRig"; }
    std::filesystem::path documents() const override { return root_ / "Documents"; }
    std::filesystem::path temporary() const override { return root_; }

private:
    std::filesystem::path root_;
};

} // namespace zenka::test
