@echo off
rem Runs an update so that its result outlives the session that started it. The Ansible role puts this
rem file beside tarnlift.exe and starts it detached from its connection.
rem
rem     tarnlift-run.cmd start SWITCHES   runs tarnlift.exe: its output is redirected to run\report.xml,
rem                                       then the return code is written to run\code
rem     tarnlift-run.cmd wait SECONDS     waits for the end of that run for so long, and prints one of
rem                                       ended CODE, running, cut-off (ended without a return code), none
rem
rem "start" ends with 3 where a run is already there: nobody starts a second one before the result of the
rem first was picked up and the directory "run" removed.
setlocal DisableDelayedExpansion
cd /d "%~dp0"
if "%~1"=="start" goto start
if "%~1"=="wait" goto wait
exit /b 2

:start
"%ComSpec%" /d /c exit 0
mkdir run 2>nul
if errorlevel 1 exit /b 3
set "TEMP=%~dp0temp"
call :update %2 %3 %4 %5 > run\report.xml
exit /b 0

:update
"%~dp0tarnlift.exe" %*
> run\code echo %ERRORLEVEL%
exit /b 0

:wait
set /a "LEFT=%~2"
set /a "DOUBT=0"
:look
call :state
if not "%STATE%"=="running" echo %STATE%& exit /b 0
if %LEFT% leq 0 echo running& exit /b 0
set /a "LEFT-=1"
"%SystemRoot%\System32\ping.exe" -n 2 127.0.0.1 >nul
goto look

rem The output file of a run is open for as long as the run or the adapter utility lives, and cannot be
rem renamed meanwhile. A run that is being started has not opened it yet, so only the tenth look in a row
rem that finds no run decides.
:state
set "STATE=running"
set "CODE="
if exist run\code set /p CODE=<run\code
if defined CODE set "STATE=ended %CODE%"& exit /b 0
set "BUSY="
if exist run\report.tmp ren run\report.tmp report.xml
if exist run\report.xml call :probe
if defined BUSY set /a "DOUBT=0"& exit /b 0
set /a "DOUBT+=1"
if %DOUBT% lss 10 exit /b 0
set "STATE=none"
if exist run\nul set "STATE=cut-off"
exit /b 0

:probe
ren run\report.xml report.tmp 2>nul
if not exist run\report.tmp set "BUSY=yes"& exit /b 0
ren run\report.tmp report.xml
exit /b 0
