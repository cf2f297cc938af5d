; The installer for one user, who needs no rights of an administrator for it. It leaves the
; question library alone, which lies in the user's own data.
; Needs -DVERSION=1.0.0 -DSOURCE=installed folder -DTARGET=installer to write -DICON=icon
; Of 64 bits, as the program is: it starts wherever the program does.
Target amd64-unicode
SetCompressor /SOLID lzma
!include MUI2.nsh

Name "Varnholt"
OutFile "${TARGET}"
RequestExecutionLevel user
InstallDir "$LOCALAPPDATA\Programs\Varnholt"
InstallDirRegKey HKCU "Software\Varnholt" "Folder"
!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_FINISHPAGE_RUN "$INSTDIR\bin\varnholt.exe"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Varnholt"

; Files of a program that runs can be neither replaced nor removed.
!macro REQUIRE_CLOSED
    IfFileExists "$INSTDIR\bin\varnholt.exe" 0 closed
again:
    ClearErrors
    FileOpen $0 "$INSTDIR\bin\varnholt.exe" a
    IfErrors 0 writable
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
        "Varnholt is running. Please close it and try again." /SD IDCANCEL IDRETRY again
    SetErrorLevel 2
    Abort "Varnholt is running."
writable:
    FileClose $0
closed:
!macroend

Section
    !insertmacro REQUIRE_CLOSED
    SetOutPath "$INSTDIR"
    ; What an older version had and this one has not must not stay.
    RMDir /r "$INSTDIR\bin"
    RMDir /r "$INSTDIR\share"
    File /r "${SOURCE}/*"
    CreateShortcut "$SMPROGRAMS\Varnholt.lnk" "$INSTDIR\bin\varnholt.exe"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKCU "Software\Varnholt" "Folder" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Varnholt"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL}" "DisplayIcon" "$INSTDIR\bin\varnholt.exe"
    WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
SectionEnd

Section "Uninstall"
    !insertmacro REQUIRE_CLOSED
    RMDir /r "$INSTDIR\bin"
    RMDir /r "$INSTDIR\share"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\Varnholt.lnk"
    DeleteRegKey HKCU "${UNINSTALL}"
    DeleteRegKey HKCU "Software\Varnholt"
SectionEnd
