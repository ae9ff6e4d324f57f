#pragma once

namespace quelmo {

// Every text the program shows or sends, named by what it says. Texts marked "(template)" hold
// %1, %2, ... for the values put in with `textWith`.
enum class TextKey {
    // The status item and the popover's frame.
    quitNuvex,
    appName,
    totalPower,
    language,
    languageSystem,
    languageKorean,
    languageEnglish,
    cat,
    catWhite,
    catGray,
    catCheese,
    catBlack,
    launchAtLogin,
    updatedEverySecond,
    quit,
    nameWithTip, // (template) a control's name, then its tooltip, as assistive technologies hear it
    nameWithCount, // (template) a heading, then how many it holds

    // The metric and power cards.
    cpu,
    gpu,
    neuralEngine,
    ane,
    memory,
    ram,
    power,
    showPerProcessUsage,
    collecting,

    // The cleanup card.
    cutPick,
    cutAll,
    cut,
    keep,
    cutKeptTip,
    cutNowTip,
    nothingToCleanUp,
    judgedByAI,
    aiNotesOff,
    onDevice,
    seeHowItDecides,
    howItPicks,
    aiIsThinking,
    sensitivity,
    lax,
    keen,
    riskSafe,
    riskCaution,
    riskDanger,
    reasonSpike,
    reasonSustained,
    reasonRamHog,
    reasonIdleApp,
    minutesAgo,       // (template) whole minutes
    hoursAgo,         // (template) whole hours
    hoursMinutesAgo,  // (template) whole hours, then minutes
    lastUsed,         // (template) the idle text
    lastUsedNoWindow, // (template) the idle text
    notOpenedThisSession,
    footerOnDevice,
    footerNotesOff, // (template) why the advisor is off

    // The selection criteria, title then detail, in the panel's order.
    neverTouchesInUse,
    neverTouchesInUseDetail,
    idleForAWhile,
    idleForAWhileDetail,
    noVisibleWindow,
    noVisibleWindowDetail,
    orResourceSpikes,
    orResourceSpikesDetail,
    restsWhenIdle,
    restsWhenIdleDetail,
    aiSaysCut,
    aiSaysCutDetail,
    aiSaysKeep,
    aiSaysKeepDetail,
    onDeviceJudgment,
    onDeviceJudgmentDetail,
    youAlwaysConfirm,
    youAlwaysConfirmDetail,

    // Why the advisor cannot be used.
    modelNotSupported,
    modelTurnedOff,
    modelDownloading,
    modelUnavailable,

    // What the advisor sends the model.
    advisorInstructions,
    advisorPrompt, // (template) name, signal, window, CPU, RAM, reason
    neverBroughtToFront,
    lastSeenMinutesAgo, // (template) whole minutes
    lastSeenHoursAgo,   // (template) whole hours, then minutes
    windowShown,
    windowNotShown,

    keyCount // not a text: the number of texts
};

} // namespace quelmo
