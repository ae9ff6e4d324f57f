target_sources(quelmo_core PRIVATE
  settings/SettingsKeys.h
  settings/SettingsFile.h settings/SettingsFile.cpp
  settings/Preferences.h settings/Preferences.cpp
  settings/AppLang.h settings/AppLang.cpp
  settings/LoginItem.h settings/LoginItem.cpp
)
