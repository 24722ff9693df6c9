#include "help/HelpSynonyms.h"

#include <array>

namespace kv {
namespace {

// Each row is one thing. Words of this help come first, then those of other tools, of electricians, of the office, of
// the street. "turnoff" is also "turn off" and "turned off". A word may stand in two rows when it has two meanings.
constexpr auto kGroups = std::to_array<std::string_view>({
    // The machine and its parts.
    "plc controller cpu device machine equipment target unit rtu hardware box sps automate appliance module endpoint "
    "asset system installation oven pump conveyor belt press mixer robot boiler furnace compressor crane mill packer "
    "filler line plant",
    "model type family variant kind series catalogue sort class label plate compatible supported",
    "firmware os o/s runtime kernel operatingsystem systemsoftware bios",
    "bootloader bootstrap boot recoverymode bootmode",
    "program project application ladder logic code software routine app sketch plcprogram userprogram",
    "codepage charset charactercode encoding encoded unicode utf utf8 ansi cyrillic latin accent accents accented "
    "umlaut umlauts diacritic "
    "national foreign letters mojibake",
    "fonts font typeface glyph lettering characterset charactersets charactergenerator",
    "images image picture icon icons symbol symbols graphic graphics bitmap bitmaps logo drawing photo",
    "memory ram eeprom storage contents",
    "flash eprom chip nand",
    "display screen panel hmi touchpanel touchscreen lcd displayunit operatorterminal faceplate visualisation "
    "visualization scada",
    "battery buffer buffered",
    "fitter electrician technician maintenance service serviceman mechanic engineer",
    "spare replacement substitute retrofit swap swapped exchange exchanged replace changeover",
    "broken dead defect burnt burned fried faulty die died kaput damaged destroyed smoke blown toast bust killed "
    "lightning ruined fail fails failed failure defunct finished wrecked crashed kaputt pop popped cracked flooded "
    "water explode exploded overheated",
    "brick bricked hang stuck unusable halfdead frozen freeze froze hung blinking blink lamp dark black blank notstart "
    "notboot wontstart",
    "power mains voltage supply electricity current outage blackout powercut brownout fuse electric electrical breaker "
    "tripped trip surge storm",
    "switch turn toggle flip",
    "switchoff turnoff poweroff shutdown unplug unplugged unpower",
    "restart reboot reset powercycle coldstart warmstart restarting",
    "run start resume running execute runmode startup",
    "stop halt estop emergency stopped pause stopmode standstill idle suspended",
    "state status mode condition led lamp indicator",
    "noise interference emc disturbance shield shielding grounding earth electrical inverter motor vfd spikes "
    "disturbances crosstalk frequency drive drives",

    // Values.
    "operand tag variable register mnemonic symbol datapoint address location datablock db channel signal point io",
    "value number figure content amount quantity reading data temperature degree celsius pressure bar weight kilo kg "
    "litre level flow rpm percent speed dosage torque humidity",
    "setpoint parameter recipe preset setvalue target adjustment setting constant formula temperature pressure weight "
    "speed level limit dose time degree",
    "bit flag coil marker boolean bool digital discrete",
    "integer int word dint uint int16 int32 short long double",
    "float real decimal floatingpoint fraction comma",
    "input sensor potentiometer transmitter meter di ai switch proximity photocell probe thermocouple encoder "
    "limitswitch contact signal",
    "output actuator solenoid servo valve relay do dq motor lamp heater cylinder fan drive horn contactor",
    "timer clock delay stopwatch",
    "counter count counting totalizer totaliser tally",
    "hex hexadecimal base radix binary octal notation representation endian endianness byteorder swapbytes",
    "text string ascii character letter plaintext",
    "format form formatted appearance shown showing displayed presentation view viewed see visible",
    "range limit minimum threshold maximum min max bounds smallest largest biggest highest lowest high low bigger "
    "smaller over "
    "under exceed exceeds",
    "region watchlist group list favourite selection block collection watchtable variabletable set bookmark monitored "
    "points",
    "watch monitor live historian datalogger logger realtime observe follow trend animate refresh update poll cyclic "
    "continuous continuously "
    "cyclically permanently scan moving moves changing itself byitself constantly permanently steadily ongoing "
    "updating",
    "read fetch query retrieve readout upload get obtain acquire collect look view show display inspect print",
    "write put send set force forcing poke transfer command override download push assign output enter assign adjust "
    "apply "
    "commit key",
    "change modify alter edit adjust overwrite overwrote tweak manipulate fiddle touched set correct changed tune "
    "retune tuned fiddled messed tampered edited",
    "undo revert takeback cancel redo rollback mistake typo back stepback oneback reverse",
    "copy paste clipboard duplicate ctrlc ctrlv",
    "cell field grid row column line table cells",
    "hide hidden invisible conceal filter",
    "pale grey gray stale faded old outofdate greyed weak dim washed",
    "green coloured color highlight highlighted tint blue yellow sand orange",
    "sandcoloured readonly writeprotected writable",

    // Files, and what is done with them.
    "backup clone image snapshot archive dump safetycopy savepoint rescue mirror duplicate safety disaster archiving "
    "archived archives",
    "save store keep preserve retain archive secure",
    "create make take produce generate draw new",
    "restore recover reinstate bringback putback writeback reload rollback goback retrieve previous former earlier "
    "yesterday friday lastweek original beforehand earlier previously",
    "verify check prove validate confirm test inspect ensure examine approve approved assurance double",
    "compare diff identical same equal differ difference match deviation delta mismatch different",
    "checksum hash digest crc signature fingerprint sha fcs lrc bcc parity",
    "file document",
    "folder directory directories path location drive disk usb stick place storage c drive saved stored wheres",
    "extension ending suffix filetype",
    "open load browse choose pick select picker chooser",
    "delete remove erase wipe clear drop purge discard format deleted nuke zero blank empty emptied scrap dispose "
    "strip",
    "lose lost gone vanish disappear missing wiped erased loss disappeared vanished vanishes wipes deleted destroys "
    "reset zeroed overwritten",
    "retentive retain remanent persistent nonvolatile kept survive preserve keep stillthere intact preserved remains "
    "remain stays stay afterwards",
    "spreadsheet excel sheet xls xlsx csv office libreoffice workbook calc google numbers ods table macro pivot",
    "export dump extract output saveas",
    "import load readin bring ingest",
    "separator delimiter semicolon comma tab fieldseparator",
    "full space room quota enospc",
    "corrupt damaged invalid broken bad garbage unreadable defective malformed mangled scrambled gibberish rubbish "
    "nonsense garbled",
    "locked writeprotected readonly protected",

    // Loads.
    "download flash transfer burn install deploy load upload push program send put bring provision rollout commission "
    "commissioning inject feed",
    "update upgrade newer newest latest release uptodate patch migrate refresh renew",
    "old outdated obsolete ancient legacy older tooold deprecated unsupported notenough insufficient unsuitable "
    "incompatible",
    "version release build revision number",
    "progress percent remaining bar eta",
    "interrupt interrupted cut abort aborted cancelled broke halfway middle midway half incomplete partial unfinished",
    "time long duration minutes hours takes slow wait howlong lasts last finished finish ready eta",

    // Reaching a controller.
    "connect reach link connectivity connection communicate talk attach establish join contact access comm comms "
    "communication "
    "attach attached hook hooked plug plugged pair",
    "disconnect hangup close release detach offline logoff",
    "online attached live connected going onlinemode",
    "settings setup configuration configure options parameters preferences config",
    "cable wire jumper transceiver line cord lead wiring plug socket connector pin crossover nullmodem patch rj45 rj11 "
    "dsub ninepin 9pin",
    "serial com rs232 rs485 rs422 usb uart tty comport converter adapter adaptor dongle",
    "port interface comport socket",
    "baud speed baudrate bitrate bps rate kbit kbaud fast slow",
    "parity stopbit databits framing 8n1 7e1",
    "network ethernet tcp ip lan hotspot udp wifi wlan subnet vlan switch socket dhcp gateway router ping vpn",
    "address ip host hostname dns url",
    "node slave station unitid unitnumber busaddress nodenumber id stationnumber",
    "timeout wait delay patience timelimit latency waiting",
    "retry retries tries attempt attempts repeat resend repetition",
    "phone telephone dial modem gsm call mobile cellular lte sim dialup landline ring sms analog analogue isdn line "
    "teleservice",
    "dialin callhome listen incoming calledback reverse inbound router nat behind vpn rings phoneshome",
    "firewall blocked whitelist block antivirus allow defender security proxy port rule",
    "answer respond reply response silent mute react timeout echo acknowledge quiet silence reacts reaction nothing "
    "nobody acknowledgement notreact notanswer notrespond notresponse notreply alive ping reachable unreachable "
    "contact",
    "lose lost drop dropped break broke interrupt disconnect disconnects reconnect unstable flaky intermittent "
    "intermittently sporadic sporadically glitch "
    "goesaway closes closed peer kicked gone away",
    "trace sniffer protocol frame packet telegram traffic capture bus analyser wireshark bytes raw message sniff "
    "record",
    "busy occupied taken inuse used locked held holding hogging engaged unavailable reserved claimed blocking blocks "
    "blocked grabbed conflict",
    "simultaneous parallel somebodyelse someoneelse anotherperson colleague two both together sametime concurrent "
    "station programmingstation secondpc secondlaptop",
    "simulate simulator simulation demo demonstrate demonstration trainer practise practice virtual emulate emulator "
    "pretend train training dummy fake "
    "imitate sandbox dryrun rehearse rehearsal offlinetest playground learn staging lab vm mock mockup sandboxed",
    "wrong other another mismatch different incorrect unexpected notthe confused mixed neighbour neighbor foreign "
    "stranger mixup rearranged moved",
    "serialnumber identity identify identification who",
    "remote distance faraway elsewhere home site field outside",

    // People.
    "user person operator employee worker account name colleague staff somebody someone who whom anybody people boss "
    "chief man guy woman team",
    "login logon signin signon logged authenticate loggingon loggingin",
    "logoff logout signout signoff leave home",
    "shift handover takeover takes nextshift crew",
    "password pin passcode credential secret passphrase key code pw",
    "forget forgot forgotten unknown lost nobodyknows",
    "permission right access allow authorise admin administrator privilege denied sudo group policy uac rights role "
    "roles acl elevated root authority authorised authorized authorisation clearance entitled",
    "lock protect protection secure security locked unlock unlocked encrypt encrypted encryption lockout vulnerability "
    "exploit",
    "journal audit history trail logbook accountability traceability records compliance gmp fda iso inspector auditor "
    "evidence proof accountable attributable nonrepudiation changecontrol gxp validation logbooks revision revisions "
    "revisionhistory documented authority responsible culprit whodid whochanged logged recorded paper papertrail sign "
    "signed",
    "tamper manipulate forge falsify fake doctored cheat sabotage integrity tampered untouched genuine",
    "yesterday lastnight lastweek ago earlier past recently night monday day week date when tuesday wednesday thursday "
    "friday saturday sunday weekend month january",
    "reason cause why justification comment explanation",
    "log event events protocol messages notices entries history eventlog happened appeared flashed scrolled lines "
    "written bottom",

    // The program itself.
    "question prompt ask confirm confirmation dialog popup box messagebox yesno areyousure",
    "accident accidental accidentally unintended unintentionally mistake inadvertently careless fast quick oops "
    "wrongbutton misclick unwanted slip slipped",
    "message error alarm warning fault incident failure problem trouble notice issue popup complains errorcode "
    "notification "
    "alert errormessage",
    "refuse reject deny decline refused forbid forbidden notallowed notaccepted illegal disallow notpermitted "
    "prohibited accept takeit letme notpossible wontaccept wonttake nottake notaccept notlet notallow notpermit",
    "sure unsure certain uncertain unknown notknown doubt executed arrived gotthrough reallydone wentthrough confirmed "
    "successful success succeeded worked reached",
    "support vendor manufacturer maker supplier hotline contact helpdesk company seller producer author developer "
    "developers",
    "bug crash ticket complaint defect exception segfault freeze crashed crashes",
    "report diagnostics logfile details submit send mail dump forward supply attach",
    "licence license copyright opensource legal library component thirdparty terms",
    "about info information",
    "manual documentation handbook help guide docs instruction doc userguide tutorial explanation f1 instructions "
    "howto paper pdf",
    "search lookup find index keyword topic",
    "print printer paper hardcopy pdf printout page sheet printable",
    "key shortcut hotkey keyboard accelerator keys keystroke button",
    "mouse pointer click rightclick touchpad contextmenu",
    "zoom scale scaling small tiny size large bigger resolution dpi hidpi 4k magnify enlarge letters readable "
    "unreadable glasses eyes blurry sharp",
    "dark theme light night colour colors contrast skin bright brightness glare",
    "window view layout tab pane splitter toolbar menu",
    "session site plant customer job workspace profile factory installation client facility station stations location "
    "locations endcustomer line lines",
    "several multiple many various two different fleet lines sites plants ten twenty dozens hundreds",
    "begin beginner beginning first newbie start started starting newcomer introduction intro quickstart overview "
    "basics new novice onboarding helloworld tour walkthrough gettingstarted gettingstart initial initially",
    "example sample trial tryout template starter",
    "script batch automate programmatically orchestrator automatic automatically itself byitself alone ownaccord "
    "overnight weekly daily hourly "
    "periodically scheduled schedule nightly cron unattended job pipeline ci task "
    "powershell bash python robot pipeline orchestrate integrate integration api program programmatic service daemon "
    "agent jenkins ansible c# java net",
    "commandline console shell terminal invoke invocation cli kvtele prompt cmd headless powershell cmdline "
    "withoutwindow nogui gui "
    "graphical interface headless ssh",
    "exitcode returncode errorlevel returnvalue exit return",
    "json machinereadable parse parsing structured",
    "language german translate translation locale",
    "computer pc laptop notebook workstation desktop windows linux",

    "nameplate plate label sticker identification",
    "compliance regulation law standard requirement policy rule",
    "emptied empty blank cleared zero zeroed",

    "enough sufficient adequate minimum required requirement",
    "belong assign match fit suit suitable right correct appropriate",
    "practise rehearse try test experiment",
    "allowed permitted possible may can forbidden",
    "list overview summary table catalogue directory enumerate which",
    "step procedure instruction sequence guide howto workflow",
    "danger risk hazard safe safety harm harmful harmless dangerous consequence effect",
    "missing absent notthere unavailable notfound notlisted nowhere",
    "slow sluggish lag bandwidth throughput laggy fast speed performance",
    "afterwards later following next since",

    // Forms of one word.
    "write wrote written",
    "send sent",
    "begin began begun",
    "choose chose chosen",
    "take took taken",
    "overwrite overwrote overwritten",
    "hold held",
    "keep kept",
    "burn burnt",
    "leave left",
    "see saw seen",
    "tell told",
    "bring brought",
    "type typed typing enter entered input",
});

}  // namespace

std::span<const std::string_view> SynonymGroups() {
  return kGroups;
}

}  // namespace kv
