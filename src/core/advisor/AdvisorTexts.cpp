#include "core/advisor/AdvisorTexts.h"

#include <cmath>

namespace quelmo {

namespace {

// Each line of the instructions on its own source line, so the text reads as the model reads it.
// clang-format off
constexpr char8_t englishInstructions[] =
    u8"You are a cleanup helper that keeps macOS responsive. Goal: close only apps the user is NOT using,\n"
    u8"and leave apps that are in use or should stay running. The worst mistake is closing something in use.\n"
    u8"Decide from the behavior signals (last-used time, whether a window is visible, CPU) plus what the app is.\n"
    u8"\n"
    u8"recommendation rules:\n"
    u8"- 'cut' (safe to close): not looked at for a while, no visible window, used once and forgotten.\n"
    u8"- 'keep' (leave running): always-on apps, working in the background, or used often.\n"
    u8"  e.g. music/video playback, cloud sync/backup, password managers, messengers, downloads/renders in progress,\n"
    u8"       editors/docs/terminals that may have unsaved work, an app you were just using.\n"
    u8"\n"
    u8"risk: how risky to close — SAFE / CAUTION / DANGER.\n"
    u8"If unsure, be conservative: answer 'keep' + 'CAUTION'. Write the explanation in English.";

constexpr char8_t koreanInstructions[] =
    u8"너는 macOS를 쾌적하게 만드는 정리 도우미다. 목표: 사용자가 '안 쓰는' 앱만 골라 닫고,\n"
    u8"'쓰는' 앱과 '맥락상 켜둬야 하는' 앱은 그대로 둔다. 오판(쓰는 걸 닫음)이 가장 나쁘다.\n"
    u8"주어진 행동 신호(마지막 사용 시각, 화면에 창이 있는지, CPU)와 앱 정체를 함께 보고 판단한다.\n"
    u8"\n"
    u8"recommendation 규칙:\n"
    u8"- 'cut'(닫아도 됨): 오래 안 봤고, 보이는 창도 없고, 한번 쓰고 잊은 듯한 앱.\n"
    u8"- 'keep'(켜둘 것): 상시 실행형이거나 백그라운드로 일하는 중이거나 자주 쓰는 앱.\n"
    u8"  예: 음악/영상 재생, 클라우드 동기화·백업, 비밀번호 관리자, 메신저, 다운로드/렌더 진행 중,\n"
    u8"      저장 안 한 작업이 있을 수 있는 에디터/문서/터미널, 방금까지 보던 앱.\n"
    u8"\n"
    u8"risk: 닫았을 때 위험도 — SAFE / CAUTION / DANGER.\n"
    u8"확실하지 않으면 과장 말고 'keep' + 'CAUTION'으로 보수적으로 답한다. 설명은 한국어로.";
// clang-format on

// "Last seen 2h 5m ago" and its kin: how long ago the app was last in front.
QString signalText(std::optional<double> idleMinutes, bool korean) {
    if (!idleMinutes)
        return korean ? QStringLiteral("이번 세션에서 한 번도 앞에 띄운 적 없음")
                      : QStringLiteral("Never brought to front this session");
    const double x = *idleMinutes;
    if (x >= 60.0) {
        // The remainder keeps the sign of x (truncating division) and is taken before truncation.
        const QString hours = wholeNumber(x / 60.0);
        const QString minutes = wholeNumber(std::fmod(x, 60.0));
        return korean ? QStringLiteral("마지막으로 본 지 ") + hours + QStringLiteral("시간 ") +
                            minutes + QStringLiteral("분 전")
                      : QStringLiteral("Last seen ") + hours + QStringLiteral("h ") + minutes +
                            QStringLiteral("m ago");
    }
    return korean ? QStringLiteral("마지막으로 본 지 ") + wholeNumber(x) + QStringLiteral("분 전")
                  : QStringLiteral("Last seen ") + wholeNumber(x) + QStringLiteral("m ago");
}

QString windowWord(bool hasWindow, bool korean) {
    if (korean)
        return hasWindow ? QStringLiteral("있음") : QStringLiteral("없음");
    return hasWindow ? QStringLiteral("yes") : QStringLiteral("no");
}

} // namespace

QString advisorInstructions(bool korean) {
    return QString::fromUtf8(korean ? koreanInstructions : englishInstructions);
}

QString wholeNumber(double value) {
    const double truncated = std::trunc(value);
    // -0.4 truncates to -0, which is written "0"; a value that is not a number is written "0" too.
    if (truncated == 0.0 || std::isnan(truncated))
        return QStringLiteral("0");
    return QString::number(truncated, 'f', 0);
}

QString buildPrompt(const QString& name, double cpu, double rssMB, const QString& reason,
                    std::optional<double> idleMinutes, bool hasWindow, bool korean) {
    const QString signal = signalText(idleMinutes, korean);
    const QString window = windowWord(hasWindow, korean);
    const QString usage = QStringLiteral("\n- CPU ") + wholeNumber(cpu) +
                          QStringLiteral("%, RAM ") + wholeNumber(rssMB) + QStringLiteral("MB");
    if (korean)
        return QStringLiteral("앱/프로세스: '") + name + QStringLiteral("'\n행동 신호:\n- ") +
               signal + QStringLiteral("\n- 화면에 보이는 창: ") + window + usage +
               QStringLiteral("\n- 탐지 사유: '") + reason +
               QStringLiteral("'\n지금 안 쓰는 거라 닫아도 되는지(cut), 아니면 켜둬야 하는지(keep) "
                              "판단해줘.");
    return QStringLiteral("App/process: '") + name + QStringLiteral("'\nBehavior signals:\n- ") +
           signal + QStringLiteral("\n- Visible window on screen: ") + window + usage +
           QStringLiteral("\n- Detection reason: '") + reason +
           QStringLiteral("'\nDecide whether it's unused and safe to close (cut), or should stay "
                          "(keep).");
}

} // namespace quelmo
