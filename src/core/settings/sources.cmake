target_sources(quelmo_core PRIVATE
  settings/SettingsKeys.h
  settings/AppLang.h settings/AppLang.cpp
)
