#pragma once

/// The class the fake server is registered as, in place of PowerPoint's.
inline constexpr wchar_t fakeClassId[] = L"{C8A2F4D7-6B1E-4E53-9A07-3D51B6E0F218}";
