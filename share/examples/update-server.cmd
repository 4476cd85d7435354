@echo off
rem Updates the firmware of this server's adapters with Tarnlift and reports what to do next. Put it in the directory of
rem tarnlift.exe and run it as an administrator:
rem
rem     update-server.cmd                 preview: shows what an update would do and writes nothing
rem     update-server.cmd /update         updates by fwmatrix.txt
rem     update-server.cmd /update /auto   updates by the files of the firmware directory
rem
rem Further arguments: /p (a preview, even beside /update), /v, /id=DIRECTORY, /fmd=DIRECTORY, /ramdrive=DRIVE as
rem Tarnlift knows them, and /xml. Any other argument is refused, and nothing is run.
rem
rem SERVER.txt in the same directory holds the output of this run, SERVER.log that of all runs. Tarnlift writes to
rem SERVER.txt while it runs, so a run that was killed leaves there how far it came; the next run moves it to SERVER.log.
rem With /xml the files for tarnfleet are written as well: SERVER.xml, SERVER.code and, after an update, SERVER.query.xml.
rem
rem Return codes:
rem     0      all is well
rem     3010   only with /update: all is well, and the server must be rebooted (the code that Windows installers use)
rem     100    an argument was refused, or Tarnlift was not started or did not come to its end
rem     other  the return code of Tarnlift
setlocal DisableDelayedExpansion
set "PROGRAM=%~dp0tarnlift.exe"
set "REPORT=%~dp0%COMPUTERNAME%"
set "LOG=%REPORT%.log"
set "FIND=%SystemRoot%\System32\find.exe"

set "CODE="
set "UPDATE="
set "PREVIEW="
set "XML="
set "SWITCHES="
set "PLACES="
:next_argument
if "%~1"=="" goto arguments_read
set "NAME=%~1"
set "VALUE=%~2"
rem The command prompt splits /id=D:\fw into two arguments; "/id=D:\fw" in quotation marks is one.
set "INLINE="
for /f "tokens=1* delims==" %%A in ("%~1") do set "NAME=%%A"
for /f "tokens=1* delims==" %%A in ("%~1") do set "INLINE=%%B"
if defined INLINE set "VALUE=%INLINE%"
set "KNOWN="
if /i "%NAME%"=="/update" set "KNOWN=yes"& set "UPDATE=yes"
if /i "%NAME%"=="/p" set "KNOWN=yes"& set "PREVIEW=yes"
if /i "%NAME%"=="/preview" set "KNOWN=yes"& set "PREVIEW=yes"
if /i "%NAME%"=="/xml" set "KNOWN=yes"& set "XML=yes"
if /i "%NAME%"=="/auto" set "KNOWN=yes"& set "SWITCHES=%SWITCHES% /auto"
if /i "%NAME%"=="/v" set "KNOWN=yes"& set "SWITCHES=%SWITCHES% /v"
if defined KNOWN if defined INLINE goto refused
if defined KNOWN shift & goto next_argument
for %%S in (id fmd ramdrive) do if /i "%NAME%"=="/%%S" set "KNOWN=yes"
if not defined KNOWN goto refused
if not defined VALUE goto refused
if "%VALUE:~0,1%"=="/" goto refused
rem A backslash before the closing quotation mark would take the mark into the path.
if "%VALUE:~-1%"=="\" set "VALUE=%VALUE%\"
set PLACES=%PLACES% "%NAME%=%VALUE%"
if not defined INLINE shift
shift
goto next_argument
:refused
echo %COMPUTERNAME%: FAILED - Argument not understood: "%NAME%". Nothing was run. The first lines of update-server.cmd list
echo the arguments.
exit /b 100
:arguments_read
if defined PREVIEW set "UPDATE="
set "MODE=/update"
if not defined UPDATE set "MODE=/p /update"
set "OUTPUT=%REPORT%.txt"
set "FORM=/q"
if defined XML set "OUTPUT=%REPORT%.xml"
if defined XML set "FORM=/xml"

if not exist "%PROGRAM%" echo %COMPUTERNAME%: FAILED - "%PROGRAM%" is missing.& exit /b 100
set "BUSY="
call :clear "%REPORT%.txt"
if not defined BUSY call :clear "%REPORT%.xml"
if defined BUSY echo %COMPUTERNAME%: FAILED - "%BUSY%" cannot be replaced. Is another run going on?& exit /b 100
for %%E in (code query.xml) do if exist "%REPORT%.%%E" del /f /q "%REPORT%.%%E"
echo ==== %DATE% %TIME% %FORM% %MODE%%SWITCHES%%PLACES%>> "%LOG%"
"%PROGRAM%" %FORM% %MODE%%SWITCHES%%PLACES% > "%OUTPUT%"
set "CODE=%ERRORLEVEL%"
if not exist "%OUTPUT%" echo %COMPUTERNAME%: FAILED - "%OUTPUT%" cannot be written.& exit /b 100
rem The command prompt, too, returns 1 or 5 for a program that it could not start.
call :look_for_end "%OUTPUT%"
set "TWICE="
set "REBOOT="
"%FIND%" "performed twice" < "%OUTPUT%" > nul
if not errorlevel 1 set "TWICE=yes"
"%FIND%" "<RebootRequired>1" < "%OUTPUT%" > nul
if not errorlevel 1 set "REBOOT=yes"

rem The XML report does not show what waits since an earlier run. The rows of a preview with /q do.
if defined XML if defined ENDED > "%REPORT%.code" echo %CODE%
if defined XML if defined UPDATE "%PROGRAM%" /q /xml%PLACES% > "%REPORT%.query.xml"
if defined XML "%PROGRAM%" /q /p /update%SWITCHES%%PLACES% > "%REPORT%.txt"
"%FIND%" "Please reboot system" < "%REPORT%.txt" > nul
if not errorlevel 1 set "REBOOT=yes"
"%FIND%" "Reboot the system to activate" < "%REPORT%.txt" > nul
if not errorlevel 1 set "REBOOT=yes"
if defined XML type "%OUTPUT%" >> "%LOG%"
type "%REPORT%.txt" >> "%LOG%"
type "%REPORT%.txt"

set "STATE=FAILED"
set "ADVICE=Tarnlift ended in an unexpected way. See %COMPUTERNAME%.log."
if "%CODE%"=="0" set "STATE=FINE"
if "%CODE%"=="0" set "ADVICE=All required updates succeeded."
if "%CODE%"=="1" set "STATE=FINE"
if "%CODE%"=="1" set "ADVICE=No port needs an update."
if "%CODE%"=="2" set "ADVICE=Every required update failed. update-server.cmd /update /xml writes a reason for each port."
if "%CODE%"=="3" set "ADVICE=Some updates failed, the others are done. update-server.cmd /update /xml writes a reason for each port."
if "%CODE%"=="4" set "ADVICE=Bad switch, or the directory of Tarnlift cannot be found."
if "%CODE%"=="5" set "ADVICE=No adapters found. Try winhbcfg.exe listattr, and look for a blank in the path of TEMP."
if "%CODE%"=="6" set "ADVICE=No firmware directory. Create it, or name its parent directory with /id=."
if "%CODE%"=="7" set "ADVICE=No usable firmware file for any port. Check the table and the firmware directory."
if "%CODE%"=="8" set "ADVICE=Not enough rights. Run it as an administrator."
if "%CODE%"=="9" set "ADVICE=This Windows is too old. Tarnlift needs major version 10 or higher."
if "%CODE%"=="0" if not defined UPDATE set "STATE=PREVIEW"
if "%CODE%"=="0" if not defined UPDATE set "ADVICE=Updates are due, nothing was written. Run update-server.cmd /update."
if not defined ENDED set "STATE=FAILED"
if not defined ENDED set "ADVICE=Tarnlift was not started or did not come to its end, code %CODE%. See %COMPUTERNAME%.log."
if "%STATE%"=="FINE" if defined REBOOT if defined UPDATE set "STATE=REBOOT"
if "%STATE%"=="REBOOT" set "ADVICE=Reboot to activate the new firmware."

echo %COMPUTERNAME%: %STATE% - %ADVICE%
if defined REBOOT if not "%STATE%"=="REBOOT" echo %COMPUTERNAME%: Some boards wait for a reboot.
if defined TWICE echo %COMPUTERNAME%: After the reboot run tarnlift.exe /rewrite: this firmware must be downloaded twice.

if not defined ENDED exit /b 100
if "%STATE%"=="REBOOT" exit /b 3010
if "%CODE%"=="1" exit /b 0
exit /b %CODE%

rem Removes the output of an earlier run; the log keeps it if that run did not come to its end. Sets BUSY if the file is in
rem use or cannot be removed. The program of another run has it open, and then nobody else can open it for writing.
:clear
if not exist %1 exit /b
set "BUSY=%~1"
>> %1 set "BUSY="
if defined BUSY exit /b
call :look_for_end %1
if not defined ENDED echo ==== The run before this one did not come to its end:>> "%LOG%"
if not defined ENDED type %1 >> "%LOG%"
del /f /q %1
if exist %1 set "BUSY=%~1"
exit /b

rem Sets ENDED if the file holds the output of a run that came to its end, with the code CODE if that is set.
:look_for_end
set "ENDED="
if not exist %1 exit /b
"%FIND%" "Return Code=%CODE%" < %1 > nul
if not errorlevel 1 set "ENDED=yes"
"%FIND%" "</Execution>" < %1 > nul
if not errorlevel 1 set "ENDED=yes"
exit /b
