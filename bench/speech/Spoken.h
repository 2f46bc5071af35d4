/// Sentences and recordings for benchmarks of recognition.
#pragma once

#include <QString>

#include <vector>

namespace velorin {

constexpr double spokenRate = 16000;

/// The sound of one of the sentences of the desktop tests, or of a file under a path; 16 kHz, mono. Empty
/// when it cannot be read.
[[nodiscard]] std::vector<float> spokenSentence(const QString& name);
[[nodiscard]] std::vector<float> spokenFile(const QString& path);

/// From so many seconds before the first sound to so many after the last.
[[nodiscard]] std::vector<float> cutClose(const std::vector<float>& sound, double before, double after);

/// Writes it to a file, for what hears files only.
[[nodiscard]] bool writeSound(const QString& path, const std::vector<float>& sound);

} // namespace velorin
