; The installer of VixaVideoFX. tools/package.sh calls it with
;   VERSION    "1.0.0"
;   FILES      the script that lists the files: macros InstallFiles, DeleteFiles, DeleteOwnFiles, RemoveFolders
;   OUT_FILE   where the installer goes
; Exit codes: 0 done, 1 cancelled, 2 failed and undone, 5 the library is in use, 6 the folder is somebody else's, 740 no
; administrator rights.
; The uninstaller's /FILESONLY leaves the registry alone: the installer of another version calls it so.

Unicode true
ManifestDPIAware true
SetCompressor /SOLID lzma

!include FileFunc.nsh
!include LogicLib.nsh
!include MUI2.nsh
!include x64.nsh
!include "${FILES}"

!define NAME "VixaVideoFX"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"
!define CODE_FAILED 2
!define CODE_IN_USE 5
!define CODE_FOREIGN_FOLDER 6
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
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE OnFolderChosen
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

!macro RefuseInUse
    !insertmacro Refuse ${CODE_IN_USE} "A program is using ${NAME}.$\r$\n$\r$\nNothing was changed. Please close it and start again."
!macroend

; A loaded library, like a running program, cannot be opened for writing.
!macro RequireUnused FILE
    ${If} ${FileExists} "${FILE}"
        ClearErrors
        FileOpen $0 "${FILE}" a
        ${If} ${Errors}
            !insertmacro RefuseInUse
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend

; The library, in either width, and the host.
!macro RequireAllUnused FOLDER
    !insertmacro RequireUnused "${FOLDER}\x86\${NAME}.dll"
    !insertmacro RequireUnused "${FOLDER}\x86\vixahost.exe"
    !insertmacro RequireUnused "${FOLDER}\x64\${NAME}.dll"
    !insertmacro RequireUnused "${FOLDER}\x64\vixahost.exe"
!macroend

; Runs the system's registration program over the libraries of a folder, each in its own width. Sets $0 to 0 when all went
; well. A 32-bit program reaches the 64-bit system folder by another name.
!macro Register WORDS FOLDER
    ClearErrors
    ExecWait '"$SYSDIR\regsvr32.exe" ${WORDS} /s "${FOLDER}\x86\${NAME}.dll"' $0
    ${If} ${RunningX64}
    ${AndIf} $0 == 0
        ExecWait '"$WINDIR\Sysnative\regsvr32.exe" ${WORDS} /s "${FOLDER}\x64\${NAME}.dll"' $0
    ${EndIf}
    ${If} ${Errors}
        StrCpy $0 "none"
    ${EndIf}
!macroend

; Takes the libraries of a folder out of the registry, as far as they are in it: when one fails the other goes all the same.
!macro Unregister FOLDER
    ExecWait '"$SYSDIR\regsvr32.exe" /u /s "${FOLDER}\x86\${NAME}.dll"'
    ${If} ${RunningX64}
        ExecWait '"$WINDIR\Sysnative\regsvr32.exe" /u /s "${FOLDER}\x64\${NAME}.dll"'
    ${EndIf}
!macroend

; Sets $1 to the registered path in the registry's view VIEW.
!macro RegisteredPath VIEW
    SetRegView ${VIEW}
    ReadRegStr $1 HKCR "CLSID\{DDBE68A3-F53E-4E2D-B5AF-578F4302C032}\InprocServer32" ""
    SetRegView 32
!macroend

!define FOREIGN_FOLDER "There are other files in $INSTDIR.$\r$\n$\r$\nNothing was changed. Please choose a folder that is new or empty."

Var old            ; the folder of the installed version's files, or empty
Var aside          ; where they wait when the new version goes to the same folder, or empty
Var folderWasThere ; 1: the folder was there before its first installation, and stays
Var folderIsOurs   ; 1: the folder is new, empty or the installed version's
Var failed         ; 1: MoveAll could not move everything
Var trouble        ; why the new version cannot be installed, or empty

Function .onInit
    !insertmacro RequireAdministrator
    ReadRegStr $old HKLM "${UNINSTALL_KEY}" InstallLocation
    ${IfNot} ${FileExists} "$old\Uninstall.exe"
    ${AndIfNot} ${FileExists} "$old\.previous\Uninstall.exe"
        StrCpy $old ""
    ${EndIf}
FunctionEnd

; Sets $folderIsOurs for $INSTDIR.
Function JudgeFolder
    StrCpy $folderIsOurs 1
    ${If} $INSTDIR != $old
        FindFirst $0 $1 "$INSTDIR\*.*"
        ${DoWhile} $1 != ""
            ${If} $1 != "."
            ${AndIf} $1 != ".."
                StrCpy $folderIsOurs 0
                ${Break}
            ${EndIf}
            FindNext $0 $1
        ${Loop}
        FindClose $0
    ${EndIf}
FunctionEnd

Function OnFolderChosen
    Call JudgeFolder
    ${If} $folderIsOurs != 1
        MessageBox MB_OK|MB_ICONEXCLAMATION "${FOREIGN_FOLDER}"
        Abort
    ${EndIf}
FunctionEnd

; MoveAll FROM TO: moves everything in a folder into another, which may be in it. A file whose name is taken there gets
; ".kept" behind its own; folders that are in both become one. Sets $failed to 1 where something stays.
!macro MoveAll FROM TO
    Push "${FROM}"
    Push "${TO}"
    Call MoveAll
!macroend

Function MoveAll
    Exch $R1 ; to
    Exch
    Exch $R0 ; from
    Push $R2
    Push $R3
    CreateDirectory "$R1"
    FindFirst $R2 $R3 "$R0\*.*"
    ${DoWhile} $R3 != ""
        ${If} $R3 != "."
        ${AndIf} $R3 != ".."
        ${AndIf} "$R0\$R3" != $R1
            ClearErrors
            ${IfNot} ${FileExists} "$R1\$R3"
                Rename "$R0\$R3" "$R1\$R3"
            ${ElseIf} ${FileExists} "$R0\$R3\*.*"
            ${AndIf} ${FileExists} "$R1\$R3\*.*"
                !insertmacro MoveAll "$R0\$R3" "$R1\$R3"
                ClearErrors
                RMDir "$R0\$R3"
            ${Else}
                Rename "$R0\$R3" "$R1\$R3.kept"
            ${EndIf}
            ${If} ${Errors}
                StrCpy $failed 1
            ${EndIf}
        ${EndIf}
        FindNext $R2 $R3
    ${Loop}
    FindClose $R2
    Pop $R3
    Pop $R2
    Pop $R0
    Pop $R1
FunctionEnd

; Puts the installed version's files back from where they waited.
!macro PutBack
    ${If} $aside != ""
        !insertmacro MoveAll "$aside" "$INSTDIR"
        RMDir "$aside"
    ${EndIf}
!macroend

Section
    SetShellVarContext all
    Call JudgeFolder
    ${If} $folderIsOurs != 1
        !insertmacro Refuse ${CODE_FOREIGN_FOLDER} "${FOREIGN_FOLDER}"
    ${EndIf}
    ${If} $old != ""
        !insertmacro RequireAllUnused "$old"
        !insertmacro RequireUnused "$old\${NAME}.dll" ; as 1.0.0 had it, which knew 32 bit only
        !insertmacro RequireUnused "$old\vixahost.exe"
    ${EndIf}

    ; A folder that was there before stays when everything else goes.
    StrCpy $folderWasThere 0
    ${If} ${FileExists} "$INSTDIR\*.*"
        StrCpy $folderWasThere 1
    ${EndIf}

    ; The installed version stays whole until the new one is registered. In the same folder it makes room.
    StrCpy $aside ""
    ${If} $old != ""
    ${AndIf} $INSTDIR == $old
        ReadRegDWORD $folderWasThere HKLM "${UNINSTALL_KEY}" FolderWasThere
        StrCpy $aside "$INSTDIR\.previous"
        ; Without its uninstaller the folder holds part of a version whose installation was cut short, to be written over.
        ${If} ${FileExists} "$INSTDIR\Uninstall.exe"
            ${While} ${FileExists} "$aside\*.*"
                StrCpy $aside "$aside~"
            ${EndWhile}
            StrCpy $failed 0
            !insertmacro MoveAll "$INSTDIR" "$aside"
            ${If} $failed == 1
                !insertmacro PutBack
                !insertmacro RefuseInUse
            ${EndIf}
        ${EndIf}
        StrCpy $old $aside
    ${EndIf}

    ClearErrors
    SetOverwrite try
    !insertmacro InstallFiles
    ${IfNot} ${Errors}
        WriteUninstaller "$INSTDIR\Uninstall.exe"
    ${EndIf}
    ${If} ${Errors}
        StrCpy $trouble "the files could not be written to $INSTDIR"
    ${Else}
        SetOutPath "$INSTDIR"
        !insertmacro Register "" "$INSTDIR"
        ${If} $0 != 0
            StrCpy $trouble "the effects could not be registered (code $0)"
        ${Else}
            StrCpy $trouble ""
            ; The library enters 259 characters of its path.
            !insertmacro RegisteredPath 32
            StrCpy $3 $1
            StrCpy $1 "$INSTDIR\x64\${NAME}.dll"
            ${If} ${RunningX64}
                !insertmacro RegisteredPath 64
            ${EndIf}
            ${If} $3 != "$INSTDIR\x86\${NAME}.dll"
            ${OrIf} $1 != "$INSTDIR\x64\${NAME}.dll"
                StrCpy $trouble "programs could not load it from $INSTDIR; please choose a folder with a short, plain name"
            ${EndIf}
        ${EndIf}
        ${If} $trouble != ""
            !insertmacro Unregister "$INSTDIR"
        ${EndIf}
    ${EndIf}

    ${If} $trouble != ""
        SetOutPath "$TEMP"
        !insertmacro DeleteFiles
        Delete "$INSTDIR\Uninstall.exe"
        !insertmacro RemoveFolders
        ${If} $old != ""
            !insertmacro PutBack
            ReadRegStr $old HKLM "${UNINSTALL_KEY}" InstallLocation
            ${If} ${FileExists} "$old\${NAME}.dll"
                ExecWait '"$SYSDIR\regsvr32.exe" /s "$old\${NAME}.dll"'
            ${Else}
                !insertmacro Register "" "$old"
            ${EndIf}
            StrCpy $trouble "$trouble. The installed version is as it was"
        ${EndIf}
        ${If} $folderWasThere == 0
            RMDir "$INSTDIR"
        ${EndIf}
        !insertmacro Refuse ${CODE_FAILED} "${NAME} was not installed: $trouble."
    ${EndIf}

    ; The old version removes itself: only it knows its files. It is waited for, so it runs in place and leaves its own
    ; program. One that doesn't know /FILESONLY unregisters the effects.
    ${If} $old != ""
        ReadRegDWORD $1 HKLM "${UNINSTALL_KEY}" FolderWasThere
        ExecWait '"$old\Uninstall.exe" /S /FILESONLY _?=$old' $0
        ${If} $0 == 0
            Delete "$old\Uninstall.exe"
            ${If} $aside != ""
                !insertmacro PutBack ; what is the user's own
            ${ElseIf} $1 != 1
                RMDir "$old"
            ${EndIf}
        ${EndIf}
        !insertmacro Register "" "$INSTDIR"
    ${EndIf}

    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayName "${NAME}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" Publisher "Vixa"
    WriteRegStr HKLM "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\Uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\Uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" EstimatedSize ${SIZE_KB}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" FolderWasThere $folderWasThere
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoModify 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoRepair 1
    SetErrorLevel 0
SectionEnd

Var filesOnly

Function un.onInit
    ; The copy that runs here is deleted at the next start of the system, but its folder would be tried before it.
    ${If} $EXEDIR != $INSTDIR
        RMDir /REBOOTOK "$EXEDIR"
        SetRebootFlag false
    ${EndIf}
    !insertmacro RequireAdministrator
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/FILESONLY" $1
    StrCpy $filesOnly 1
    ${If} ${Errors}
        StrCpy $filesOnly 0
    ${EndIf}
FunctionEnd

; DeleteOwnFile FILE SIZE CRC: deletes a file of the folder if it is still what was installed.
!macro DeleteOwnFile FILE SIZE CRC
    Push "$INSTDIR\${FILE}"
    Push ${SIZE}
    Push ${CRC}
    Call un.DeleteOwnFile
!macroend

Function un.DeleteOwnFile
    Pop $2 ; checksum
    Pop $1 ; size
    Pop $0 ; file
    StrCpy $3 0 ; whether it's the same
    System::Call 'kernel32::CreateFile(t r0, i 0x80000000, i 1, p 0, i 3, i 0, p 0) p .r4'
    ${If} $4 != -1
        System::Call 'kernel32::GetFileSize(p r4, p 0) i .r5'
        ${If} $5 == $1
            System::Call 'kernel32::CreateFileMapping(p r4, p 0, i 2, i 0, i 0, p 0) p .r6'
            System::Call 'kernel32::MapViewOfFile(p r6, i 4, i 0, i 0, p 0) p .r7'
            ${If} $7 != 0
                System::Call 'ntdll::RtlComputeCrc32(i 0, p r7, i r5) i .r8'
                ${If} $8 == $2
                    StrCpy $3 1
                ${EndIf}
                System::Call 'kernel32::UnmapViewOfFile(p r7)'
            ${EndIf}
            System::Call 'kernel32::CloseHandle(p r6)'
        ${EndIf}
        System::Call 'kernel32::CloseHandle(p r4)'
    ${EndIf}
    ${If} $3 == 1
        Delete "$0"
    ${EndIf}
FunctionEnd

Section Uninstall
    SetShellVarContext all
    ${If} $filesOnly == 0
        !insertmacro RequireAllUnused "$INSTDIR"
        !insertmacro Register "/u" "$INSTDIR"
        ${If} $0 != 0
            StrCpy $1 $0
            !insertmacro Register "" "$INSTDIR" ; what had been unregistered
            !insertmacro Refuse ${CODE_FAILED} "The effects could not be unregistered (code $1). Nothing was removed."
        ${EndIf}
    ${EndIf}
    !insertmacro DeleteOwnFiles
    !insertmacro RemoveFolders
    ${If} $filesOnly == 0
        ReadRegDWORD $folderWasThere HKLM "${UNINSTALL_KEY}" FolderWasThere
        Delete "$INSTDIR\Uninstall.exe"
        ${If} $folderWasThere != 1
            RMDir "$INSTDIR"
        ${EndIf}
        DeleteRegKey HKLM "${UNINSTALL_KEY}"
    ${EndIf}
    SetErrorLevel 0
SectionEnd
