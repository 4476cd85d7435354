@echo off
rem Updates this server by Tarnlift and says what has to be done next. Put it beside tarnlift.exe and
rem run it as an administrator:
rem
rem     update-server.cmd                  updates by fwmatrix.txt
rem     update-server.cmd /p               previews the same and writes nothing
rem     update-server.cmd /auto /id=D:\fw  with these further switches of Tarnlift, but neither /s nor /xml
rem
rem What Tarnlift says of this run is in SERVER.txt beside it, of all runs in SERVER.log.
rem Ends with 0 when all is well, 3010 when a reboot is needed as well (the number that Windows
rem installers use), else with Tarnlift's return code, or 100 when Tarnlift was not started or did not
rem come to its end.
setlocal DisableDelayedExpansion
set "PROGRAM=%~dp0tarnlift.exe"
set "OUTPUT=%~dp0%COMPUTERNAME%.txt"
set "LOG=%~dp0%COMPUTERNAME%.log"
set "FIND=%SystemRoot%\System32\find.exe"

if not exist "%PROGRAM%" echo %COMPUTERNAME%: FAILED - "%PROGRAM%" is not there. & exit /b 100
if exist "%OUTPUT%" del /f /q "%OUTPUT%"
if exist "%OUTPUT%" echo %COMPUTERNAME%: FAILED - "%OUTPUT%" cannot be replaced. & exit /b 100
"%PROGRAM%" /q /update %* > "%OUTPUT%"
set "CODE=%ERRORLEVEL%"
if not exist "%OUTPUT%" echo %COMPUTERNAME%: FAILED - "%OUTPUT%" cannot be written. & exit /b 100
echo ==== %DATE% %TIME% /q /update %* >> "%LOG%"
type "%OUTPUT%" >> "%LOG%"
type "%OUTPUT%"

rem The command prompt, too, has a 1 or a 5: for a program that it could not start.
set "ENDED="
"%FIND%" "Return Code=%CODE%" < "%OUTPUT%" > nul
if not errorlevel 1 set "ENDED=yes"
rem The sentence on the reboot is of this run alone, and where ports failed it can be missing. The rows of the ports
rem say what still waits.
set "REBOOT="
"%FIND%" "Please reboot system" < "%OUTPUT%" > nul
if not errorlevel 1 set "REBOOT=yes"
"%FIND%" "Reboot the system to activate" < "%OUTPUT%" > nul
if not errorlevel 1 set "REBOOT=yes"
set "TWICE="
"%FIND%" "performed twice" < "%OUTPUT%" > nul
if not errorlevel 1 set "TWICE=yes"

set "GROUP=FAILED"
set "ADVICE=Tarnlift ended in an unexpected way. Look into %COMPUTERNAME%.txt."
if "%CODE%"=="0" set "GROUP=FINE"
if "%CODE%"=="0" set "ADVICE=All that was required succeeded."
if "%CODE%"=="1" set "GROUP=FINE"
if "%CODE%"=="1" set "ADVICE=No port needs an update."
if "%CODE%"=="2" set "ADVICE=No port was updated. See above; a further run with /update /xml names a reason for each port."
if "%CODE%"=="3" set "ADVICE=Some ports failed, the others are done. A further run with /update /xml names a reason for each port."
if "%CODE%"=="4" set "ADVICE=The command line is wrong. Correct the switches."
if "%CODE%"=="5" set "GROUP=LOOK"
if "%CODE%"=="5" set "ADVICE=No adapters found. Try winhbcfg.exe listattr, and look for a blank in the path of TEMP."
if "%CODE%"=="6" set "ADVICE=There is no firmware directory. Create it, or name its parent with /id=."
if "%CODE%"=="7" set "GROUP=LOOK"
if "%CODE%"=="7" set "ADVICE=No usable firmware file for any port. Look into the table and the firmware directory."
if "%CODE%"=="8" set "ADVICE=Not enough rights. Run it as an administrator."
if "%CODE%"=="9" set "ADVICE=This Windows is too old. Tarnlift needs major version 10 or higher."
if "%CODE%"=="19" set "ADVICE=The file of /iv= is no firmware file."
if not defined ENDED set "GROUP=FAILED"
if not defined ENDED set "ADVICE=Tarnlift was not started or did not come to its end, code %CODE%. Look into %COMPUTERNAME%.txt."

if defined REBOOT if "%GROUP%"=="FINE" set "GROUP=REBOOT"
if "%GROUP%"=="REBOOT" set "ADVICE=Reboot to activate the new firmware."
echo %COMPUTERNAME%: %GROUP% - %ADVICE%
if defined REBOOT if not "%GROUP%"=="REBOOT" echo %COMPUTERNAME%: Some boards wait for a reboot.
if defined TWICE echo %COMPUTERNAME%: After the reboot run tarnlift.exe /rewrite: this firmware has to be downloaded twice.

if not defined ENDED exit /b 100
if "%GROUP%"=="REBOOT" exit /b 3010
if "%GROUP%"=="FINE" exit /b 0
exit /b %CODE%
