; The installer of VixaVideoFX. tools/package.sh calls it with
;   VERSION    "1.0.0"
;   FILES      the script that lists the files: macros InstallFiles, DeleteFiles, RemoveFolders
;   OUT_FILE   where the installer goes
; Exit codes: 0 done, 1 cancelled, 2 failed and undone, 5 the library is in use, 740 no administrator rights.

Unicode true
ManifestDPIAware true
SetCompressor /SOLID lzma

!include LogicLib.nsh
!include MUI2.nsh
!include "${FILES}"

!define NAME "VixaVideoFX"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"
!define CODE_FAILED 2
!define CODE_IN_USE 5
!define CODE_NO_RIGHTS 740

Name "${NAME} ${VERSION}"
OutFile "${OUT_FILE}"
InstallDir "$PROGRAMFILES32\${NAME}"
InstallDirRegKey HKLM "${UNINSTALL_KEY}" InstallLocation
RequestExecutionLevel admin
ShowInstDetails nevershow
ShowUninstDetails nevershow
BrandingText "${NAME} ${VERSION}"

VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "${NAME}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "${NAME} setup"
VIAddVersionKey LegalCopyright ""

!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; Ends with a message (none when silent) and an exit code.
!macro Refuse CODE TEXT
    MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
    SetErrorLevel ${CODE}
    Quit
!macroend

!macro RequireAdministrator
    UserInfo::GetAccountType
    Pop $0
    ${If} $0 != "Admin"
        !insertmacro Refuse ${CODE_NO_RIGHTS} "${NAME} is set up for all users of this computer, which takes administrator rights.$\r$\n$\r$\nNothing was changed. Please start again as an administrator."
    ${EndIf}
!macroend

; A loaded library cannot be opened for writing.
!macro RequireUnused
    ${If} ${FileExists} "$INSTDIR\${NAME}.dll"
        ClearErrors
        FileOpen $0 "$INSTDIR\${NAME}.dll" a
        ${If} ${Errors}
            !insertmacro Refuse ${CODE_IN_USE} "A program is using ${NAME}.$\r$\n$\r$\nNothing was changed. Please close it and start again."
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend

Function .onInit
    !insertmacro RequireAdministrator
FunctionEnd

Function un.onInit
    ; The copy that runs here is deleted at the next start of the system, but its folder would be tried before it.
    ${If} $EXEDIR != $INSTDIR
        RMDir /REBOOTOK "$EXEDIR"
        SetRebootFlag false
    ${EndIf}
    !insertmacro RequireAdministrator
FunctionEnd

Section
    SetShellVarContext all

    ; An older version removes itself: only it knows its files. It needs to be waited for, so it runs in place and leaves
    ; its own program.
    ReadRegStr $1 HKLM "${UNINSTALL_KEY}" InstallLocation
    ${If} $1 != ""
    ${AndIf} ${FileExists} "$1\Uninstall.exe"
        ExecWait '"$1\Uninstall.exe" /S _?=$1' $0
        ${If} $0 == ${CODE_IN_USE}
            !insertmacro Refuse ${CODE_IN_USE} "A program is using ${NAME}.$\r$\n$\r$\nNothing was changed. Please close it and start again."
        ${ElseIf} $0 != 0
            !insertmacro Refuse ${CODE_FAILED} "The installed version of ${NAME} could not be removed (code $0)."
        ${EndIf}
        Delete "$1\Uninstall.exe"
        RMDir "$1"
    ${EndIf}
    !insertmacro RequireUnused

    ; A folder that was there before stays when everything else goes.
    StrCpy $2 0
    ${If} ${FileExists} "$INSTDIR\*.*"
        StrCpy $2 1
    ${EndIf}

    ClearErrors
    SetOverwrite try
    !insertmacro InstallFiles
    ${IfNot} ${Errors}
        WriteUninstaller "$INSTDIR\Uninstall.exe"
    ${EndIf}
    ${If} ${Errors}
        StrCpy $0 "the files could not be written to $INSTDIR"
    ${Else}
        SetOutPath "$INSTDIR"
        ExecWait '"$SYSDIR\regsvr32.exe" /s "$INSTDIR\${NAME}.dll"' $0
        ${If} ${Errors}
        ${OrIf} $0 != 0
            StrCpy $0 "the effects could not be registered (code $0)"
            ExecWait '"$SYSDIR\regsvr32.exe" /u /s "$INSTDIR\${NAME}.dll"'
        ${Else}
            StrCpy $0 ""
            ; The library enters what the ANSI code page can express of its path.
            ReadRegStr $1 HKCR "CLSID\{DDBE68A3-F53E-4E2D-B5AF-578F4302C032}\InprocServer32" ""
            ${If} $1 != "$INSTDIR\${NAME}.dll"
                ExecWait '"$SYSDIR\regsvr32.exe" /u /s "$INSTDIR\${NAME}.dll"'
                StrCpy $0 "programs could not load it from $INSTDIR; please choose a folder with a short, plain name"
            ${EndIf}
        ${EndIf}
    ${EndIf}

    ${If} $0 != ""
        SetOutPath "$TEMP"
        !insertmacro DeleteFiles
        Delete "$INSTDIR\Uninstall.exe"
        !insertmacro RemoveFolders
        ${If} $2 == 0
            RMDir "$INSTDIR"
        ${EndIf}
        !insertmacro Refuse ${CODE_FAILED} "${NAME} was not installed: $0."
    ${EndIf}

    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayName "${NAME}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" Publisher "Vixa"
    WriteRegStr HKLM "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\Uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\Uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" EstimatedSize ${SIZE_KB}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" FolderWasThere $2
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoModify 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoRepair 1
    SetErrorLevel 0
SectionEnd

Section Uninstall
    SetShellVarContext all
    !insertmacro RequireUnused
    ReadRegDWORD $2 HKLM "${UNINSTALL_KEY}" FolderWasThere
    ClearErrors
    ExecWait '"$SYSDIR\regsvr32.exe" /u /s "$INSTDIR\${NAME}.dll"' $0
    ${If} ${Errors}
    ${OrIf} $0 != 0
        !insertmacro Refuse ${CODE_FAILED} "The effects could not be unregistered (code $0). Nothing was removed."
    ${EndIf}
    !insertmacro DeleteFiles
    Delete "$INSTDIR\Uninstall.exe"
    !insertmacro RemoveFolders
    ${If} $2 != 1
        RMDir "$INSTDIR"
    ${EndIf}
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    SetErrorLevel 0
SectionEnd
