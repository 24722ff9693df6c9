; The installer for Windows: for the user who starts it, without an administrator's rights.
;   setup.exe [/S] [/D=FOLDER]             /S: asks nothing
;   uninstall.exe [/S] [/SESSIONS=delete]  sessions stay unless it is said
; How they end: 0 done, 1 cancelled, 2 failed, 3 refused for the account SYSTEM, 4 a file of the installation is in use.
; Given by the script that calls the compiler: VERSION, FILES (folder with what is installed), LIST (lines of File and of the
; list of files), ICON, OUT.
Target amd64-unicode
SetDateSave off
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true
ManifestLongPathAware true
Name "Telepanel tools"
OutFile "${OUT}"
InstallDir "$LOCALAPPDATA\Programs\Telepanel tools"
InstallDirRegKey HKCU "Software\Telepanel tools" "Folder"
Icon "${ICON}"
UninstallIcon "${ICON}"
BrandingText "Telepanel tools ${VERSION}"
ShowInstDetails nevershow
VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "Telepanel tools"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "Telepanel tools, setup"
VIAddVersionKey "LegalCopyright" "the authors of the Telepanel tools"

!include LogicLib.nsh
!include FileFunc.nsh
!include TextFunc.nsh
!include WordFunc.nsh

!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Telepanel tools"
!define IN_USE "$2 in$\r$\n$INSTDIR$\r$\nis in use. Close the programs of the Telepanel tools (and any command line that runs kvtele or kvsim), then retry."
!define CANNOT_WRITE "Files cannot be written to$\r$\n$INSTDIR$\r$\nNothing was changed there. Choose a folder that you may write to, and start the setup again."

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

!define TOKEN_QUERY 8
!define TOKEN_USER 1
!define LOCAL_SYSTEM_SID 22

; Ends where the account is the system's own: the installer's maker has holes that such a run opens.
!macro RefuseSystem
  StrCpy $5 0  ; 1: it is. Asked of the account's identifier, since its name is another one in other languages
  System::Call 'kernel32::GetCurrentProcess() p .r0'
  System::Call 'advapi32::OpenProcessToken(p r0, i ${TOKEN_QUERY}, *p .r1) i .r2'
  ${If} $2 != 0
    System::Alloc 256
    Pop $3
    System::Call 'advapi32::GetTokenInformation(p r1, i ${TOKEN_USER}, p r3, i 256, *i .r4) i .r2'
    ${If} $2 != 0
      System::Call '*$3(p .r4)'
      System::Call 'advapi32::IsWellKnownSid(p r4, i ${LOCAL_SYSTEM_SID}) i .r5'
    ${EndIf}
    System::Free $3
    System::Call 'kernel32::CloseHandle(p r1)'
  ${EndIf}
  System::Call 'advapi32::GetUserNameW(w .r0, *i ${NSIS_MAX_STRLEN}) i .r1'
  ${If} $5 != 0
  ${OrIf} $0 == "SYSTEM"
    MessageBox MB_OK|MB_ICONSTOP "The setup is not for the account SYSTEM: unpack telepanel-tools-${VERSION}-windows-x64.zip instead, which needs no installation." /SD IDOK
    SetErrorLevel 3
    Quit
  ${EndIf}
!macroend

; Nothing is touched while a file of the installation is in use: such a file cannot be opened for writing.
!macro WaitUntilClosed un
Function ${un}WaitUntilClosed
  again:
  StrCpy $2 ""
  !insertmacro IfUsed "KvTeleExe.exe"
  !insertmacro IfUsed "kvtele.exe"
  !insertmacro IfUsed "kvsim.exe"
  !insertmacro IfUsed "kvselftest.exe"
  !insertmacro ForEachListed IfUsed ""
  ${If} $2 != ""
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "${IN_USE}" /SD IDCANCEL IDRETRY again
    SetErrorLevel 4
    Quit
  ${EndIf}
FunctionEnd
!macroend

; $2: the file, when it is in use
!macro IfUsed file
  ${If} ${FileExists} "$INSTDIR\${file}"
    ClearErrors
    FileOpen $1 "$INSTDIR\${file}" a
    ${If} ${Errors}
      StrCpy $2 "${file}"
    ${Else}
      FileClose $1
    ${EndIf}
  ${EndIf}
!macroend

; Goes through the list of installed files: WITH_FILE for each file, WITH_FOLDER (or "") for each line of a folder, which ends with "\".
!macro ForEachListed WITH_FILE WITH_FOLDER
  ClearErrors
  FileOpen $3 "$INSTDIR\installed.txt" r
  ${IfNot} ${Errors}
    next:
    ClearErrors
    FileRead $3 $4
    ${IfNot} ${Errors}
      ${TrimNewLines} $4 $4
      StrCpy $5 $4 1 -1
      ${If} $4 == ""
      ${ElseIf} $5 == "\"
        !if "${WITH_FOLDER}" != ""
          ${WITH_FOLDER} "$INSTDIR\$4"
        !endif
      ${Else}
        !insertmacro ${WITH_FILE} "$4"
      ${EndIf}
      Goto next
    ${EndIf}
    FileClose $3
  ${EndIf}
!macroend
!insertmacro WaitUntilClosed ""
!insertmacro WaitUntilClosed "un."

; Asked before the first file of an older version goes, so that a refusal leaves that version as it was.
Function EndUnlessWritable
  CreateDirectory "$INSTDIR"
  ClearErrors
  FileOpen $1 "$INSTDIR\setup.tmp" w
  ${If} ${Errors}
    RMDir "$INSTDIR"  ; only an empty one
    MessageBox MB_OK|MB_ICONSTOP "${CANNOT_WRITE}" /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}
  FileClose $1
  Delete "$INSTDIR\setup.tmp"
FunctionEnd

; Deletes what the list of installed files names, line by line, and the folders that are empty then. Never a folder with
; what somebody else has put there.
!macro DeleteFile file
  Delete "$INSTDIR\${file}"
!macroend
!macro DeleteListed un
Function ${un}DeleteListed
  !insertmacro ForEachListed DeleteFile RMDir
  Delete "$INSTDIR\installed.txt"
FunctionEnd
!macroend
!insertmacro DeleteListed ""
!insertmacro DeleteListed "un."

; A folder that cannot be, such as one on a drive that is not there, is passed over by the installer's own reading of /D.
Function EndUnlessFolderIsAsNamed
  System::Call 'kernel32::GetCommandLine() t .r0'
  ${WordFind} $0 " /D=" "E+1}" $1
  ${IfNot} ${Errors}
  ${AndIf} $1 != $INSTDIR
  ${AndIf} $1 != "$INSTDIR\"
    StrCpy $INSTDIR $1
    MessageBox MB_OK|MB_ICONSTOP "${CANNOT_WRITE}" /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}
FunctionEnd

Function .onInit
  !insertmacro RefuseSystem
  Call EndUnlessFolderIsAsNamed
FunctionEnd

Section
  Call EndUnlessWritable
  Call WaitUntilClosed
  Call DeleteListed
  ClearErrors
  SetOutPath "$INSTDIR"
  !include "${LIST}"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  ${If} ${Errors}
    MessageBox MB_OK|MB_ICONSTOP "Not everything could be written to$\r$\n$INSTDIR$\r$\nThe installation is not complete: choose a folder that you may write to, or make room, and start the setup again." /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}
  ; the first session, where there is none
  SetOverwrite off
  SetOutPath "$INSTDIR\Sessions\Default"
  File "${FILES}/Sessions/Default/KvCmDrv1.ini"
  SetOverwrite on
  SetOutPath "$INSTDIR"
  CreateDirectory "$SMPROGRAMS\Telepanel tools"
  CreateShortcut "$SMPROGRAMS\Telepanel tools\Telepanel.lnk" "$INSTDIR\KvTeleExe.exe"
  ; the installation's folder in a console, with the first help
  CreateShortcut "$SMPROGRAMS\Telepanel tools\Telepanel command line.lnk" "$SYSDIR\cmd.exe" "/k kvtele.exe --help" "$INSTDIR\kvtele.exe"
  WriteRegStr HKCU "Software\Telepanel tools" "Folder" "$INSTDIR"
  WriteRegStr HKCU "${KEY}" "DisplayName" "Telepanel tools"
  WriteRegStr HKCU "${KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${KEY}" "DisplayIcon" "$INSTDIR\KvTeleExe.exe"
  WriteRegStr HKCU "${KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKCU "${KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKCU "${KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${KEY}" "NoRepair" 1
SectionEnd

Function un.onInit
  !insertmacro RefuseSystem
FunctionEnd

Section "Uninstall"
  Call un.WaitUntilClosed
  Call un.DeleteListed
  ${GetParameters} $6
  ClearErrors
  ${GetOptions} $6 "/SESSIONS=" $7
  ${If} $7 == "delete"
    RMDir /r "$INSTDIR\Sessions"
  ${EndIf}
  ; what the programs make for themselves; folders only when nobody has put anything there
  Delete "$INSTDIR\Windows.ini"
  RMDir "$INSTDIR\TP_Temp"
  RMDir "$INSTDIR\Tmp"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\Telepanel tools\Telepanel.lnk"
  Delete "$SMPROGRAMS\Telepanel tools\Telepanel command line.lnk"
  RMDir "$SMPROGRAMS\Telepanel tools"
  DeleteRegKey HKCU "${KEY}"
  DeleteRegKey HKCU "Software\Telepanel tools"
SectionEnd
