#pragma once

// The words the advisor puts in front of the local model: the instructions that open every
// request and the per-candidate prompt, from the program's text table in either language. The
// model's answers were tuned against exactly these texts.

#include "core/texts/Language.h"

#include <QString>
#include <optional>

namespace quelmo {

// The system message of every request. Twelve lines joined by single line feeds, with no line
// feed after the last one.
QString advisorInstructions(Language language);

// The user message describing one candidate. `name` is the candidate key, `cpu` its CPU use in
// percent, `rssMB` its resident memory in mebibytes, `reason` the already-localised reason label,
// `idleMinutes` the minutes since the app was last in front (absent when never seen there),
// `hasWindow` whether it shows a window. Name and reason are inserted unescaped.
QString buildPrompt(const QString& name, double cpu, double rssMB, const QString& reason,
                    std::optional<double> idleMinutes, bool hasWindow, Language language);

// A real number as the prompt writes it: truncated toward zero, plain digits, a minus sign only
// for a non-zero negative result ("2" for 2.9, "0" for -0.4, "150" for 150.7).
QString wholeNumber(double value);

} // namespace quelmo
