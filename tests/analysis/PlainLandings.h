#pragma once

#include "analysis/Landings.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

/// The comparison in its plainest form, a look at each pair: the reference for the quick one.
namespace zenka::test::plain {

using analysis::ExifFrame;
using analysis::matches;
using script::Capture;
using Equal = std::function<bool(std::size_t, std::size_t)>;

inline std::vector<int> align(std::size_t n, std::size_t m, const Equal& equal) {
    std::vector<int> aligned(n, -1);
    if (n * m > 8'000'000) {
        std::vector<bool> used(m);
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0; j < m && aligned[i] < 0; ++j)
                if (!used[j] && equal(i, j)) {
                    used[j] = true;
                    aligned[i] = static_cast<int>(j);
                }
        return aligned;
    }
    std::vector<std::vector<int>> table(n + 1, std::vector<int>(m + 1));
    for (std::size_t i = 1; i <= n; ++i)
        for (std::size_t j = 1; j <= m; ++j)
            table[i][j] =
                equal(i - 1, j - 1) ? table[i - 1][j - 1] + 1 : std::max(table[i - 1][j], table[i][j - 1]);
    for (std::size_t i = n, j = m; i > 0 && j > 0;) {
        if (equal(i - 1, j - 1) && table[i][j] == table[i - 1][j - 1] + 1) {
            aligned[--i] = static_cast<int>(--j);
        } else if (table[i - 1][j] >= table[i][j - 1]) {
            --i;
        } else {
            --j;
        }
    }
    return aligned;
}

/// The frame of each capture, and whether its settings are the right ones.
inline std::vector<std::pair<int, bool>> landings(const std::vector<Capture>& captures,
                                                  const std::vector<ExifFrame>& frames) {
    const std::size_t n = captures.size();
    const std::size_t m = frames.size();
    const auto time = [&](std::size_t j) { return frames[j].date.epochSec; };
    const Equal settings = [&](std::size_t i, std::size_t j) { return matches(captures[i], frames[j]); };

    bool found = false;
    double offset = 0;
    int best = -1;
    const std::size_t step = n >= 60 ? n / 60 : 1;
    for (std::size_t a = 0; a < std::min<std::size_t>(6, n); ++a)
        for (std::size_t b = 0; b < std::min<std::size_t>(6, m); ++b) {
            if (!settings(a, b))
                continue;
            const double candidate = time(b) - captures[a].offsetSec;
            int score = 0;
            for (std::size_t i = 0; i < n; i += step)
                for (std::size_t j = 0; j < m; ++j)
                    if (settings(i, j) && std::abs(time(j) - (candidate + captures[i].offsetSec)) <= 15.0) {
                        ++score;
                        break;
                    }
            if (score > best) {
                found = true;
                best = score;
                offset = candidate;
            }
        }
    int samples = 0;
    for (std::size_t i = 0; i < n; i += step)
        ++samples;
    const bool trusted = found && 2 * best >= samples;

    std::vector<int> aligned = align(n, m, settings);
    std::vector<std::pair<double, double>> pairs;
    for (std::size_t i = 0; i < n; ++i)
        if (aligned[i] >= 0)
            pairs.emplace_back(captures[i].offsetSec,
                               time(static_cast<std::size_t>(aligned[i])) - (offset + captures[i].offsetSec));
    const auto instant = [&](std::size_t i) {
        const double t = captures[i].offsetSec;
        std::size_t from = 0;
        while (from < pairs.size() && pairs[from].first < t)
            ++from;
        std::vector<double> near;
        for (std::size_t k = from < 4 ? 0 : from - 4; k < std::min(from + 4, pairs.size()); ++k)
            near.push_back(pairs[k].second);
        std::sort(near.begin(), near.end());
        return offset + t + (near.empty() ? 0 : near[near.size() / 2]);
    };
    std::vector<std::pair<int, bool>> result;
    if (trusted) {
        std::vector<double> instants;
        for (std::size_t i = 0; i < n; ++i)
            instants.push_back(instant(i));
        aligned = align(n, m, [&](std::size_t i, std::size_t j) {
            return settings(i, j) && std::abs(time(j) - instants[i]) <= 45.0;
        });
        std::vector<bool> used(m);
        for (const int j : aligned)
            if (j >= 0)
                used[static_cast<std::size_t>(j)] = true;
        for (std::size_t i = 0; i < n; ++i) {
            result.emplace_back(aligned[i], true);
            if (aligned[i] >= 0)
                continue;
            double nearest = std::numeric_limits<double>::infinity();
            for (std::size_t j = 0; j < m; ++j) {
                const double distance = std::abs(time(j) - instants[i]);
                if (!used[j] && distance <= 45.0 && distance < nearest) {
                    nearest = distance;
                    result.back() = {static_cast<int>(j), false};
                }
            }
            if (result.back().first >= 0)
                used[static_cast<std::size_t>(result.back().first)] = true;
        }
        return result;
    }
    for (const int j : aligned)
        result.emplace_back(j, true);
    return result;
}

} // namespace zenka::test::plain
