; Puts Tidyfold in place on Windows, and takes all of it away again.
;
;   makensis -DVERSION=<version> -DBIN=<folder of the programs> -DICON=<icon> -DOUT=<installer> \
;            -DSIGN=<program that signs the file it is given> packaging/tidyfold.nsi
;
; For everybody, or without administrator's rights for the person who calls it; what is there already is brought up to
; date where it lies. /AllUsers and /CurrentUser choose, /D=FOLDER (last) chooses the place, and /S asks nothing:
; the exit status then says what happened. The uninstaller takes /S, and has the same statuses.
Unicode true
Target amd64-unicode
ManifestDPIAware true
; Administrators are asked for their rights, others go on without.
RequestExecutionLevel highest
SetCompressor /SOLID lzma
!uninstfinalize '"${SIGN}" "%1"' = 0
!finalize '"${SIGN}" "%1"' = 0

!include MUI2.nsh
!include FileFunc.nsh

; Beside NSIS's own: 0 done, 1 cancelled, 2 ended by the script.
!define STATUS_NOT_WRITTEN 2
!define STATUS_RUNNING 3
!define STATUS_NO_COMPANION 4
!define STATUS_NO_RIGHTS 5

Name "Tidyfold"
OutFile "${OUT}"
; Chosen when it starts; only /D gives it before.
InstallDir ""

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tidyfold"

VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Tidyfold"
VIAddVersionKey FileDescription "Tidyfold, installer"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey LegalCopyright ""

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_TEXT "Start Tidyfold"
!define MUI_FINISHPAGE_RUN_FUNCTION Start_As_Caller
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

Var Mode ; all or current
Var Status

!macro Fail STATUS TEXT
  SetErrorLevel ${STATUS}
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
  Quit
!macroend

!macro Use_Mode
  ${If} $Mode == all
    SetShellVarContext all
  ${Else}
    SetShellVarContext current
  ${EndIf}
!macroend

; A program that runs, or a companion in use, cannot be written.
!macro Functions_For_Both UN
Function ${UN}Demand_Free
  again:
  ${For} $1 1 3
    ${If} $1 = 1
      StrCpy $0 "$INSTDIR\tidyfold.exe"
    ${ElseIf} $1 = 2
      StrCpy $0 "$INSTDIR\tidyfold-cli.exe"
    ${Else}
      StrCpy $0 "$INSTDIR\TidyDll.dll"
    ${EndIf}
    ${If} ${FileExists} "$0"
      ClearErrors
      FileOpen $2 "$0" a
      ${If} ${Errors}
        MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "Tidyfold is running, or $0 may not be changed.$\r$\n$\r$\nClose \
          Tidyfold, and then press Retry. Nothing has been changed yet." /SD IDCANCEL IDRETRY again
        SetErrorLevel ${STATUS_RUNNING}
        Quit
      ${EndIf}
      FileClose $2
    ${EndIf}
  ${Next}
FunctionEnd
!macroend
!insertmacro Functions_For_Both ""
!insertmacro Functions_For_Both "un."

; In the companion's own words; for one person alone, it is told so.
!macro Regsvr32 OPTIONS
  ${If} $Mode == all
    ExecWait '"$SYSDIR\regsvr32.exe" /s ${OPTIONS} "$INSTDIR\TidyDll.dll"' $0
  ${Else}
    ExecWait '"$SYSDIR\regsvr32.exe" /s ${OPTIONS} /n /i:user "$INSTDIR\TidyDll.dll"' $0
  ${EndIf}
!macroend

Function .onInit
  SetRegView 64
  UserInfo::GetAccountType
  Pop $0
  ReadRegStr $1 HKLM "${UNINSTALL_KEY}" InstallLocation
  ReadRegStr $2 HKCU "${UNINSTALL_KEY}" InstallLocation
  ; As it was; at first for everybody, where that may be.
  ${If} $2 != ""
    StrCpy $Mode current
  ${ElseIf} $1 != ""
  ${OrIf} $0 == Admin
    StrCpy $Mode all
  ${Else}
    StrCpy $Mode current
  ${EndIf}
  ${GetParameters} $3
  ClearErrors
  ${GetOptions} $3 "/AllUsers" $4
  ${IfNot} ${Errors}
    StrCpy $Mode all
  ${EndIf}
  ClearErrors
  ${GetOptions} $3 "/CurrentUser" $4
  ${IfNot} ${Errors}
    StrCpy $Mode current
  ${EndIf}
  ${If} $Mode == all
  ${AndIf} $0 != Admin
    !insertmacro Fail ${STATUS_NO_RIGHTS} "Tidyfold is to be installed for everybody, which takes an administrator's \
      rights. Run the installer as administrator, or for yourself alone with /CurrentUser."
  ${EndIf}
  !insertmacro Use_Mode
  ${If} $INSTDIR == ""
    ${If} $Mode == all
      StrCpy $INSTDIR $1
    ${Else}
      StrCpy $INSTDIR $2
    ${EndIf}
  ${EndIf}
  ${If} $INSTDIR == ""
    ${If} $Mode == all
      StrCpy $INSTDIR "$PROGRAMFILES64\Tidyfold"
    ${Else}
      StrCpy $INSTDIR "$LOCALAPPDATA\Programs\Tidyfold"
    ${EndIf}
  ${EndIf}
FunctionEnd

Function un.onInit
  SetRegView 64
  ReadRegStr $2 HKCU "${UNINSTALL_KEY}" InstallLocation
  ${If} $2 == $INSTDIR
    StrCpy $Mode current
  ${Else}
    StrCpy $Mode all
    UserInfo::GetAccountType
    Pop $0
    ${If} $0 != Admin
      !insertmacro Fail ${STATUS_NO_RIGHTS} "Tidyfold is installed for everybody. To remove it takes an administrator's \
        rights."
    ${EndIf}
  ${EndIf}
  !insertmacro Use_Mode
FunctionEnd

; Not as administrator, as whom Tidyfold would not see the Outlook of the person: the desktop starts it.
Function Start_As_Caller
  Exec '"$WINDIR\explorer.exe" "$INSTDIR\tidyfold.exe"'
FunctionEnd

!macro Put FILE
  ClearErrors
  File "${FILE}"
  ${If} ${Errors}
    !insertmacro Fail ${STATUS_NOT_WRITTEN} "A file could not be written in $OUTDIR. Tidyfold is not installed \
      completely; choose another folder, or run the installer again."
  ${EndIf}
!macroend

Section
  Call Demand_Free
  StrCpy $Status 0
  SetOverwrite try
  SetOutPath "$INSTDIR"
  !insertmacro Put "${BIN}\tidyfold.exe"
  !insertmacro Put "${BIN}\tidyfold-cli.exe"
  !insertmacro Put "${BIN}\TidyDll.dll"
  !insertmacro Put "${BIN}\Tidyfold20.chm"
  !insertmacro Put "${BIN}\licences.txt"
  ; Topics of an older version.
  RMDir /r "$INSTDIR\tidyfoldhelp"
  SetOutPath "$INSTDIR\tidyfoldhelp"
  ClearErrors
  File /r "${BIN}\tidyfoldhelp\*"
  ${If} ${Errors}
    !insertmacro Fail ${STATUS_NOT_WRITTEN} "The help could not be written in $OUTDIR."
  ${EndIf}
  SetOutPath "$INSTDIR"

  !insertmacro Regsvr32 ""
  ${If} $0 != 0
    StrCpy $Status ${STATUS_NO_COMPANION}
    MessageBox MB_OK|MB_ICONEXCLAMATION "The companion TidyDll.dll could not be registered (regsvr32 said $0). \
      Tidyfold works. Where Outlook does not tell senders itself, mail is shown without them. To register it later, \
      run: regsvr32 $\"$INSTDIR\TidyDll.dll$\"" /SD IDOK
  ${EndIf}

  CreateShortcut "$SMPROGRAMS\Tidyfold.lnk" "$INSTDIR\tidyfold.exe"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayName "Tidyfold"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\tidyfold.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoRepair 1
  ${GetSize} "$INSTDIR" "/S=0K" $1 $2 $3
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" EstimatedSize $1
  SetErrorLevel $Status
SectionEnd

Section Uninstall
  Call un.Demand_Free
  !insertmacro Regsvr32 "/u"
  Delete "$SMPROGRAMS\Tidyfold.lnk"
  ; What is the installer's, by name: the folder may hold a person's own stores.
  Delete "$INSTDIR\tidyfold.exe"
  Delete "$INSTDIR\tidyfold-cli.exe"
  Delete "$INSTDIR\TidyDll.dll"
  Delete "$INSTDIR\Tidyfold20.chm"
  Delete "$INSTDIR\licences.txt"
  RMDir /r "$INSTDIR\tidyfoldhelp"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  ; The sizes that the program has kept. What a person has chosen lies below the person's own key, and stays: which
  ; folders are protected must not be lost by installing anew.
  ${If} $Mode == all
    DeleteRegKey HKLM "Software\Tidyfold"
  ${EndIf}
  DeleteRegValue HKCU "Software\Tidyfold" "HelpScreenHeight"
  DeleteRegValue HKCU "Software\Tidyfold" "HelpScreenWidth"
  DeleteRegKey /ifempty HKCU "Software\Tidyfold"
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
SectionEnd
