#include "core/texts/Texts.h"

#include <array>

namespace quelmo {

namespace {

// Kept in a namespace of its own so that the keys' short names stay inside it.
namespace table {

using enum TextKey;

// Each text as it is shown or sent, English first. Long texts keep their source lines so that
// they read as they are read.
// clang-format off
constexpr TextEntry entries[] = {
    {quitNuvex, u8"Quit Nuvex", u8"Quit Nuvex"},
    {appName, u8"Quelmo", u8"Quelmo"},
    {totalPower, u8"total power", u8"total power"},
    {language, u8"Language", u8"언어"},
    {languageSystem, u8"System", u8"시스템"},
    {languageKorean, u8"한국어", u8"한국어"},
    {languageEnglish, u8"English", u8"English"},
    {cat, u8"Cat", u8"고양이"},
    {catWhite, u8"White", u8"흰둥이"},
    {catGray, u8"Grey", u8"회색이"},
    {catCheese, u8"Cheese", u8"치즈"},
    {catBlack, u8"Black", u8"까망이"},
    {launchAtLogin, u8"Launch at login", u8"로그인 시 자동 실행"},
    {updatedEverySecond, u8"Updated every 1s", u8"1초마다 갱신"},
    {quit, u8"Quit", u8"종료"},
    {nameWithTip, u8"%1 — %2", u8"%1 — %2"},
    {nameWithCount, u8"%1 %2", u8"%1 %2"},

    {TextKey::cpu, u8"CPU", u8"CPU"},
    {gpu, u8"GPU", u8"GPU"},
    {neuralEngine, u8"Neural Engine", u8"Neural Engine"},
    {ane, u8"ANE", u8"ANE"},
    {memory, u8"Memory", u8"Memory"},
    {ram, u8"RAM", u8"RAM"},
    {power, u8"Power", u8"Power"},
    {showPerProcessUsage, u8"Show per-process usage", u8"프로세스별 사용량 보기"},
    {collecting, u8"Collecting…", u8"수집 중…"},

    {cutPick, u8"Cut pick", u8"Cut 추천"},
    {cutAll, u8"Cut all", u8"모두 Cut"},
    {cut, u8"Cut", u8"Cut"},
    {keep, u8"Keep", u8"유지"},
    {cutKeptTip, u8"AI suggests keeping — click to cut anyway", u8"AI는 유지 권장 — 그래도 자르려면 클릭"},
    {cutNowTip, u8"Cut now", u8"바로 자르기"},
    {nothingToCleanUp,
     u8"Nothing to clean up. No app is hogging resources or left running unused.",
     u8"정리할 게 없어요. 평소보다 과하게 자원 먹거나 켜둔 채 안 쓰는 앱이 없습니다."},
    {judgedByAI, u8"Judged by Apple Intelligence", u8"Apple Intelligence가 판단"},
    {aiNotesOff, u8"AI notes off", u8"AI 설명 꺼짐"},
    {onDevice, u8"On-device", u8"온디바이스"},
    {seeHowItDecides, u8"See how it decides", u8"판단 기준 보기"},
    {howItPicks, u8"How it picks only the unused", u8"어떻게 '안 쓰는 것'만 고르나"},
    {aiIsThinking, u8"Apple Intelligence is thinking…", u8"Apple Intelligence 판단 중…"},
    {sensitivity, u8"Sensitivity", u8"민감도"},
    {lax, u8"Lax", u8"관대"},
    {keen, u8"Keen", u8"민감"},
    {riskSafe, u8"Safe", u8"안전"},
    {riskCaution, u8"Caution", u8"주의"},
    {riskDanger, u8"Danger", u8"위험"},
    {reasonSpike, u8"Unusual spike", u8"비정상 급등"},
    {reasonSustained, u8"Sustained hog", u8"장시간 과점유"},
    {reasonRamHog, u8"High memory", u8"메모리 과다"},
    {reasonIdleApp, u8"Unused app", u8"안 쓰는 앱"},
    {minutesAgo, u8"%1m ago", u8"%1분 전"},
    {hoursAgo, u8"%1h ago", u8"%1시간 전"},
    {hoursMinutesAgo, u8"%1h %2m ago", u8"%1시간 %2분 전"},
    {lastUsed, u8"Last used %1", u8"마지막 사용 %1"},
    {lastUsedNoWindow, u8"Last used %1 · no window", u8"마지막 사용 %1 · 창 없음"},
    {notOpenedThisSession, u8"Not opened this session · no window", u8"이번 세션에 안 띄움 · 창 없음"},
    {footerOnDevice, u8"Apple Intelligence · on-device", u8"Apple Intelligence · 온디바이스 분석"},
    {footerNotesOff, u8"AI notes off — %1", u8"AI 설명 꺼짐 — %1"},

    {neverTouchesInUse, u8"Never touches what you're using", u8"지금 쓰는 건 안 건드려요"},
    {neverTouchesInUseDetail,
     u8"Apps with a visible window · just used · using CPU now are excluded, even if heavy",
     u8"화면에 창이 떠 있거나 · 방금 본 앱 · 지금 CPU 쓰는 앱은 자원을 많이 써도 Cut 후보에서 빼요"},
    {idleForAWhile, u8"Idle for a while", u8"안 본 지 오래됨"},
    {idleForAWhileDetail,
     u8"Not opened in a while (10–60 min by sensitivity)",
     u8"마지막으로 띄운 지 오래(민감도에 따라 10~60분)"},
    {noVisibleWindow, u8"No visible window", u8"보이는 창 없음"},
    {noVisibleWindowDetail,
     u8"All windows hidden, nothing on screen",
     u8"창이 다 내려가 화면에 안 보이는 상태"},
    {orResourceSpikes, u8"Or resource spikes", u8"또는 자원 폭주"},
    {orResourceSpikesDetail,
     u8"Abnormal spike · sustained hog · high memory",
     u8"평소보다 비정상 급등·장시간 과점유·메모리 과다"},
    {restsWhenIdle, u8"Rests when idle", u8"한가할 땐 쉬어요"},
    {restsWhenIdleDetail,
     u8"When your Mac is comfy, AI/NPU rest to save battery; wake only when it heats up or slows",
     u8"맥이 쾌적하면 AI·NPU 안 돌려 배터리 아낌. 더워지거나 무거워질 때만 깨어나 정리"},
    {aiSaysCut, u8"AI says 'cut'", u8"AI가 'cut'"},
    {aiSaysCutDetail,
     u8"Forgotten apps · finished tasks → safe to close",
     u8"잊고 켜둔 일반 앱·끝난 작업 → 닫아도 됨"},
    {aiSaysKeep, u8"AI says 'keep'", u8"AI가 'keep'"},
    {aiSaysKeepDetail,
     u8"Music · sync · backup · messengers · in use · just seen → keep (excluded)",
     u8"음악·동기화·백업·메신저·작업 중·방금 본 것 → 유지(기본 제외)"},
    {onDeviceJudgment, u8"On-device judgment", u8"온디바이스 판단"},
    {onDeviceJudgmentDetail,
     u8"Apple Intelligence stays on your Mac — no data leaves",
     u8"Apple Intelligence가 기기 안에서만, 데이터는 안 나감"},
    {youAlwaysConfirm, u8"You always confirm", u8"항상 사람이 확정"},
    {youAlwaysConfirmDetail,
     u8"System · in-use apps · Quelmo itself excluded / nothing quits until you tap Cut",
     u8"시스템·현재 쓰는 앱·Quelmo은 제외 / 종료는 Cut 눌러야 실행"},

    {modelNotSupported, u8"Apple Intelligence not supported on this Mac", u8"이 기기는 Apple Intelligence 미지원"},
    {modelTurnedOff, u8"Apple Intelligence is turned off", u8"Apple Intelligence가 꺼져 있음"},
    {modelDownloading, u8"Model is downloading", u8"모델 다운로드 중"},
    {modelUnavailable, u8"Unavailable", u8"사용 불가"},

    {advisorInstructions,
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
     u8"If unsure, be conservative: answer 'keep' + 'CAUTION'. Write the explanation in English.",
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
     u8"확실하지 않으면 과장 말고 'keep' + 'CAUTION'으로 보수적으로 답한다. 설명은 한국어로."},
    {advisorPrompt,
     u8"App/process: '%1'\n"
     u8"Behavior signals:\n"
     u8"- %2\n"
     u8"- Visible window on screen: %3\n"
     u8"- CPU %4%, RAM %5MB\n"
     u8"- Detection reason: '%6'\n"
     u8"Decide whether it's unused and safe to close (cut), or should stay (keep).",
     u8"앱/프로세스: '%1'\n"
     u8"행동 신호:\n"
     u8"- %2\n"
     u8"- 화면에 보이는 창: %3\n"
     u8"- CPU %4%, RAM %5MB\n"
     u8"- 탐지 사유: '%6'\n"
     u8"지금 안 쓰는 거라 닫아도 되는지(cut), 아니면 켜둬야 하는지(keep) 판단해줘."},
    {neverBroughtToFront, u8"Never brought to front this session", u8"이번 세션에서 한 번도 앞에 띄운 적 없음"},
    {lastSeenMinutesAgo, u8"Last seen %1m ago", u8"마지막으로 본 지 %1분 전"},
    {lastSeenHoursAgo, u8"Last seen %1h %2m ago", u8"마지막으로 본 지 %1시간 %2분 전"},
    {windowShown, u8"yes", u8"있음"},
    {windowNotShown, u8"no", u8"없음"},
};
// clang-format on

} // namespace table

using table::entries;

constexpr bool inKeyOrder() {
    if (std::size(entries) != static_cast<std::size_t>(TextKey::keyCount))
        return false;
    for (std::size_t i = 0; i < std::size(entries); ++i)
        if (static_cast<std::size_t>(entries[i].key) != i)
            return false;
    return true;
}
static_assert(inKeyOrder(), "one entry per key, in the order of TextKey");

} // namespace

std::span<const TextEntry> textTable() {
    return entries;
}

QString text(TextKey key, Language language) {
    const auto index = static_cast<std::size_t>(key);
    if (index >= std::size(entries))
        return {};
    const TextEntry& entry = entries[index];
    return QString::fromUtf8(language == Language::korean ? entry.korean : entry.english);
}

QString text(TextKey key) {
    return text(key, currentLanguage());
}

} // namespace quelmo
