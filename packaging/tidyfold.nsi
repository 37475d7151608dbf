; Puts Tidyfold in place on Windows, and takes all of it away again.
;
;   makensis -DVERSION=<version> -DBIN=<folder of the programs> -DICON=<icon> -DOUT=<installer> packaging/tidyfold.nsi
;
; /S does it without questions; /D=FOLDER (last) chooses the place.
Unicode true
Target amd64-unicode
ManifestDPIAware true
RequestExecutionLevel admin
SetCompressor /SOLID lzma

!include MUI2.nsh
!include FileFunc.nsh

Name "Tidyfold"
OutFile "${OUT}"
InstallDir "$PROGRAMFILES64\Tidyfold"

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tidyfold"

VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Tidyfold"
VIAddVersionKey FileDescription "Tidyfold, installer"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey LegalCopyright ""

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_FINISHPAGE_RUN "$INSTDIR\tidyfold.exe"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

Function .onInit
  SetRegView 64
  SetShellVarContext all
FunctionEnd

Function un.onInit
  SetRegView 64
  SetShellVarContext all
FunctionEnd

; The companion writes its registration itself.
!macro Regsvr32 OPTIONS
  ExecWait '"$SYSDIR\regsvr32.exe" /s ${OPTIONS} "$INSTDIR\TidyDll.dll"' $0
!macroend

Section
  SetOutPath "$INSTDIR"
  File "${BIN}\tidyfold.exe"
  File "${BIN}\tidyfold-cli.exe"
  File "${BIN}\TidyDll.dll"
  File "${BIN}\Tidyfold20.chm"
  File "${BIN}\licences.txt"
  SetOutPath "$INSTDIR\tidyfoldhelp"
  File /r "${BIN}\tidyfoldhelp\*"
  SetOutPath "$INSTDIR"

  !insertmacro Regsvr32 ""
  ${If} $0 != 0
    MessageBox MB_OK|MB_ICONEXCLAMATION "The companion TidyDll.dll could not be registered (regsvr32 said $0). \
      Tidyfold works, but shows mail without its sender. To register it later, run: regsvr32 $\"$INSTDIR\TidyDll.dll$\"" \
      /SD IDOK
  ${EndIf}

  CreateShortcut "$SMPROGRAMS\Tidyfold.lnk" "$INSTDIR\tidyfold.exe"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayName "Tidyfold"
  WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\tidyfold.exe"
  WriteRegStr HKLM "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoRepair 1
  ${GetSize} "$INSTDIR" "/S=0K" $1 $2 $3
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" EstimatedSize $1
SectionEnd

Section Uninstall
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
  ; The settings that the program has kept.
  DeleteRegKey HKLM "Software\Tidyfold"
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
SectionEnd
