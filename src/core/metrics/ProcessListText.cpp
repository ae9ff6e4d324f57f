#include "core/metrics/ProcessListText.h"

#include <QList>
#include <QStringDecoder>
#include <charconv>
#include <cmath>
#include <string>

namespace quelmo {

namespace {

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// Copies an all-ASCII field into `out` without a leading '+', which std::from_chars refuses.
// False when the field holds anything outside ASCII.
bool asciiWithoutPlus(QStringView field, std::string& out) {
    out.clear();
    for (const QChar c : field) {
        if (c.unicode() > 0x7f)
            return false;
        out.push_back(static_cast<char>(c.unicode()));
    }
    if (!out.empty() && out.front() == '+')
        out.erase(0, 1);
    return true;
}

// An optional sign followed by decimal digits and nothing else.
std::optional<qint64> parseInteger(QStringView field) {
    qsizetype i = 0;
    if (i < field.size() && (field[i] == QLatin1Char('+') || field[i] == QLatin1Char('-')))
        ++i;
    if (i == field.size())
        return std::nullopt;
    for (qsizetype k = i; k < field.size(); ++k) {
        if (!isDigit(field[k]))
            return std::nullopt;
    }
    std::string text;
    if (!asciiWithoutPlus(field, text))
        return std::nullopt;
    qint64 value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

// A decimal number with "." as the decimal point and an optional exponent: "12", "12.5", ".5",
// "5.", "1e3". A decimal comma, "inf", "nan" and hexadecimal forms are not numbers here.
std::optional<double> parseDecimal(QStringView field) {
    qsizetype i = 0;
    const auto digits = [&] {
        const qsizetype from = i;
        while (i < field.size() && isDigit(field[i]))
            ++i;
        return i - from;
    };
    if (i < field.size() && (field[i] == QLatin1Char('+') || field[i] == QLatin1Char('-')))
        ++i;
    qsizetype mantissaDigits = digits();
    if (i < field.size() && field[i] == QLatin1Char('.')) {
        ++i;
        mantissaDigits += digits();
    }
    if (mantissaDigits == 0)
        return std::nullopt;
    if (i < field.size() && (field[i] == QLatin1Char('e') || field[i] == QLatin1Char('E'))) {
        ++i;
        if (i < field.size() && (field[i] == QLatin1Char('+') || field[i] == QLatin1Char('-')))
            ++i;
        if (digits() == 0)
            return std::nullopt;
    }
    if (i != field.size())
        return std::nullopt;

    std::string text;
    if (!asciiWithoutPlus(field, text))
        return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<ProcInfo> parseLine(QStringView line) {
    // Split at each space only (a tab belongs to its field), empty fields dropped, so runs of
    // spaces and leading or trailing spaces separate nothing extra.
    const QList<QStringView> fields = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (fields.size() < 5)
        return std::nullopt;
    const auto id = parseInteger(fields[0]);
    if (!id)
        return std::nullopt;
    const auto cpu = parseDecimal(fields[1]);
    if (!cpu)
        return std::nullopt;
    const auto rssKilobytes = parseDecimal(fields[2]);
    if (!rssKilobytes)
        return std::nullopt;

    ProcInfo row;
    row.id = *id;
    row.cpu = *cpu;
    row.rss = *rssKilobytes * 1024.0;
    row.user = fields[3].toString();
    // An executable name with spaces comes back with one space between its words.
    for (qsizetype k = 4; k < fields.size(); ++k) {
        if (k > 4)
            row.name += QLatin1Char(' ');
        row.name += fields[k];
    }
    return row;
}

} // namespace

std::optional<QString> decodeProcessListText(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom |
                                                     QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

std::vector<ProcInfo> parseProcessListText(QStringView text) {
    std::vector<ProcInfo> rows;
    for (const QStringView line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        if (auto row = parseLine(line))
            rows.push_back(std::move(*row));
    return rows;
}

} // namespace quelmo
