// The host's error identifiers and their messages, by category. Every source file that includes
// this registers all of them again when the library is loaded, with the same texts.
//
// In the categories above 0 the codes count down from 125: a new one takes the number below the
// lowest.
#pragma once

#include "frame/error_catalogue.h"

namespace pq::errors {

// Category 0: general results of a command: its arguments, files, tools, connections.
[[maybe_unused]] static const int kSucceed = RegisterError(0, 0, "Succeed.");
[[maybe_unused]] static const int kGenericFailure = RegisterError(0, 1, "Generic Failure.");
[[maybe_unused]] static const int kInvalidApplication = RegisterError(0, 3, "Invalid application.");
[[maybe_unused]] static const int kNoCommand = RegisterError(0, 4, "No command was given.");
[[maybe_unused]] static const int kUnknownCommand = RegisterError(0, 5, "The command is unknown.");
[[maybe_unused]] static const int kUnknownOption =
    RegisterError(0, 6, "The command does not know this option.");
[[maybe_unused]] static const int kOptionValueMissing =
    RegisterError(0, 7, "An option that needs a value has none.");
[[maybe_unused]] static const int kOptionValueInvalid =
    RegisterError(0, 8, "The value of an option is not valid.");
[[maybe_unused]] static const int kOptionsExclude =
    RegisterError(0, 9, "Two of the options exclude each other.");
[[maybe_unused]] static const int kRequiredOptionMissing =
    RegisterError(0, 10, "A required option is missing.");
[[maybe_unused]] static const int kNotAdministrator =
    RegisterError(0, 11, "The command needs administrator rights.");
[[maybe_unused]] static const int kUnsupportedSystem =
    RegisterError(0, 12, "The operating system is not supported.");
[[maybe_unused]] static const int kUnsupportedServer =
    RegisterError(0, 13, "The server model is not supported.");
[[maybe_unused]] static const int kUnsupportedCommand =
    RegisterError(0, 14, "This server does not support the command.");
[[maybe_unused]] static const int kOutOfMemory =
    RegisterError(0, 15, "There is not enough memory for the command.");
[[maybe_unused]] static const int kInputFileMissing =
    RegisterError(0, 16, "The input file does not exist.");
[[maybe_unused]] static const int kInputFileUnreadable =
    RegisterError(0, 17, "The input file cannot be read.");
[[maybe_unused]] static const int kInputFileFormat =
    RegisterError(0, 18, "The input file does not have the expected format.");
[[maybe_unused]] static const int kOutputFileNotCreated =
    RegisterError(0, 19, "The output file cannot be created.");
[[maybe_unused]] static const int kOutputFileNotWritten =
    RegisterError(0, 20, "The output file cannot be written to its end.");
[[maybe_unused]] static const int kDiskFull =
    RegisterError(0, 21, "There is not enough free room on the disk.");
[[maybe_unused]] static const int kFolderNotCreated =
    RegisterError(0, 22, "The folder cannot be created.");
[[maybe_unused]] static const int kLogFolderNotWritable =
    RegisterError(0, 23, "The log folder cannot be written to.");
[[maybe_unused]] static const int kConfigurationMissing =
    RegisterError(0, 24, "The configuration file of the program is missing.");
[[maybe_unused]] static const int kConfigurationDamaged =
    RegisterError(0, 25, "The configuration file of the program is damaged.");
[[maybe_unused]] static const int kComponentMissing =
    RegisterError(0, 26, "A component of the program is missing.");
[[maybe_unused]] static const int kComponentVersion =
    RegisterError(0, 27, "A component belongs to another version of the program.");
[[maybe_unused]] static const int kLibraryNotLoaded =
    RegisterError(0, 28, "A library of the program cannot be loaded.");
[[maybe_unused]] static const int kDriverMissing =
    RegisterError(0, 29, "A driver that the command needs is not installed.");
[[maybe_unused]] static const int kDriverSilent = RegisterError(0, 30, "A driver does not answer.");
[[maybe_unused]] static const int kToolMissing =
    RegisterError(0, 32, "A vendor tool that the command needs is missing.");
[[maybe_unused]] static const int kToolNotStarted =
    RegisterError(0, 33, "A vendor tool cannot be started.");
[[maybe_unused]] static const int kToolFailed =
    RegisterError(0, 34, "A vendor tool ended with an error.");
[[maybe_unused]] static const int kToolOutputUnknown =
    RegisterError(0, 35, "The output of a vendor tool is not understood.");
[[maybe_unused]] static const int kOperationTimeout =
    RegisterError(0, 36, "The operation did not finish in time.");
[[maybe_unused]] static const int kOperationCancelled =
    RegisterError(0, 37, "The operation was cancelled by the user.");
[[maybe_unused]] static const int kAlreadyRunning =
    RegisterError(0, 38, "The program is already running on this server.");
[[maybe_unused]] static const int kDeviceBusy =
    RegisterError(0, 39, "The device is busy with another operation.");
[[maybe_unused]] static const int kDeviceMissing =
    RegisterError(0, 40, "The device was not found.");
[[maybe_unused]] static const int kDeviceSilent =
    RegisterError(0, 41, "The device does not answer.");
[[maybe_unused]] static const int kDeviceRefused =
    RegisterError(0, 42, "The device refused the request.");
[[maybe_unused]] static const int kHostNameUnresolved =
    RegisterError(0, 43, "The host name cannot be resolved to an address.");
[[maybe_unused]] static const int kServerUnreachable =
    RegisterError(0, 44, "The server cannot be reached over the network.");
[[maybe_unused]] static const int kConnectionClosed =
    RegisterError(0, 45, "The server closed the connection.");
[[maybe_unused]] static const int kConnectionTimeout =
    RegisterError(0, 46, "The connection to the server timed out.");
[[maybe_unused]] static const int kLoginFailed =
    RegisterError(0, 47, "The user name or the password is wrong.");
[[maybe_unused]] static const int kAccountLocked =
    RegisterError(0, 48, "The account is locked after too many failed logins.");
[[maybe_unused]] static const int kPrivilegeTooLow =
    RegisterError(0, 49, "The privilege of the account is too low for the command.");
[[maybe_unused]] static const int kSessionExpired =
    RegisterError(0, 50, "The session with the server has expired.");
[[maybe_unused]] static const int kNoFreeSession =
    RegisterError(0, 51, "The server has no free session.");
[[maybe_unused]] static const int kServerNotTrusted =
    RegisterError(0, 52, "The identity of the server cannot be verified.");
[[maybe_unused]] static const int kProtocolVersion =
    RegisterError(0, 53, "The server speaks an unsupported version of the protocol.");
[[maybe_unused]] static const int kAnswerIncomplete =
    RegisterError(0, 54, "The answer of the server is incomplete.");
[[maybe_unused]] static const int kChecksumMismatch =
    RegisterError(0, 55, "The checksum of the received data is wrong.");
[[maybe_unused]] static const int kAddressInvalid =
    RegisterError(0, 56, "The IP address is not valid.");
[[maybe_unused]] static const int kPortInvalid =
    RegisterError(0, 57, "The port number is not between 1 and 65535.");
[[maybe_unused]] static const int kUserNameInvalid =
    RegisterError(0, 58, "The user name holds characters that are not allowed.");
[[maybe_unused]] static const int kPasswordTooLong =
    RegisterError(0, 59, "The password is longer than the server allows.");
[[maybe_unused]] static const int kServerListEmpty =
    RegisterError(0, 60, "The list of servers is empty.");
[[maybe_unused]] static const int kSomeServersFailed =
    RegisterError(0, 61, "The command failed on at least one server of the list.");
[[maybe_unused]] static const int kInventoryNotStored =
    RegisterError(0, 62, "The collected inventory cannot be stored.");
[[maybe_unused]] static const int kInventoryLocked =
    RegisterError(0, 63, "The inventory is in use by another program.");
[[maybe_unused]] static const int kExportFormat =
    RegisterError(0, 64, "The export format is not supported.");
[[maybe_unused]] static const int kReportNotCreated =
    RegisterError(0, 65, "The report cannot be created.");
[[maybe_unused]] static const int kRestartRequired =
    RegisterError(0, 66, "The server must be restarted before the command can run.");
[[maybe_unused]] static const int kServerPoweredOff =
    RegisterError(0, 67, "The server is powered off.");
[[maybe_unused]] static const int kClockNotSet =
    RegisterError(0, 68, "The clock of the server is not set.");
[[maybe_unused]] static const int kLicenseMissing =
    RegisterError(0, 69, "The license for the command is missing.");
[[maybe_unused]] static const int kInternalError =
    RegisterError(0, 70, "The program met an internal error.");

// Category 1: firmware update of BIOS, BMC, power supplies and adapters.
[[maybe_unused]] static const int kUpdatePackageMissing =
    RegisterError(1, 82, "The update package does not exist.");
[[maybe_unused]] static const int kUpdatePackageUnreadable =
    RegisterError(1, 83, "The update package cannot be read.");
[[maybe_unused]] static const int kUpdatePackageFormat =
    RegisterError(1, 84, "The file is not an update package.");
[[maybe_unused]] static const int kUpdatePackageDamaged =
    RegisterError(1, 85, "The update package is damaged.");
[[maybe_unused]] static const int kUpdateSignature =
    RegisterError(1, 86, "The signature of the update package is not valid.");
[[maybe_unused]] static const int kUpdateServerModel =
    RegisterError(1, 87, "The update package is for another server model.");
[[maybe_unused]] static const int kUpdateBoardRevision =
    RegisterError(1, 88, "The update package does not support this board revision.");
[[maybe_unused]] static const int kUpdateScriptMissing =
    RegisterError(1, 89, "The update package holds no update script.");
[[maybe_unused]] static const int kUpdateScriptSyntax =
    RegisterError(1, 96, "The update script has a syntax error.");
[[maybe_unused]] static const int kUpdateImageMissing =
    RegisterError(1, 97, "A firmware image named by the update script is missing.");
[[maybe_unused]] static const int kUpdateImageSize =
    RegisterError(1, 98, "The firmware image does not fit the flash memory.");
[[maybe_unused]] static const int kUpdateImageHeader =
    RegisterError(1, 99, "The header of the firmware image is not valid.");
[[maybe_unused]] static const int kUpdateImageChecksum =
    RegisterError(1, 100, "The checksum of the firmware image is wrong.");
[[maybe_unused]] static const int kUpdateVersionSame =
    RegisterError(1, 101, "The firmware already has this version.");
[[maybe_unused]] static const int kUpdateVersionOlder =
    RegisterError(1, 102, "The firmware image is older than the installed firmware.");
[[maybe_unused]] static const int kUpdateDowngradeBarred =
    RegisterError(1, 103, "The installed firmware does not allow a downgrade.");
[[maybe_unused]] static const int kUpdateVersionUnread =
    RegisterError(1, 104, "Failed to read the version of the installed firmware.");
[[maybe_unused]] static const int kUpdateVersionGap =
    RegisterError(1, 105, "An intermediate firmware version must be installed first.");
[[maybe_unused]] static const int kUpdateModeNotEntered =
    RegisterError(1, 106, "The BMC did not enter the firmware transfer mode.");
[[maybe_unused]] static const int kUpdateModeNotLeft =
    RegisterError(1, 107, "The BMC did not leave the firmware transfer mode.");
[[maybe_unused]] static const int kUpdateTransferFailed =
    RegisterError(1, 108, "Failed to send the firmware image to the BMC.");
[[maybe_unused]] static const int kUpdateTransferTimeout =
    RegisterError(1, 109, "The firmware transfer did not finish in time.");
[[maybe_unused]] static const int kUpdateEraseFailed =
    RegisterError(1, 110, "Failed to erase the flash memory.");
[[maybe_unused]] static const int kUpdateWriteFailed =
    RegisterError(1, 111, "Failed to write the flash memory.");
[[maybe_unused]] static const int kUpdateVerifyFailed =
    RegisterError(1, 112, "The flash memory differs from the firmware image after writing.");
[[maybe_unused]] static const int kUpdateBackupFailed =
    RegisterError(1, 113, "Failed to back up the installed firmware.");
[[maybe_unused]] static const int kUpdateRestoreFailed =
    RegisterError(1, 114, "Failed to restore the previous firmware.");
[[maybe_unused]] static const int kUpdateBiosFailed =
    RegisterError(1, 115, "Failed to update the BIOS.");
[[maybe_unused]] static const int kUpdateBmcFailed =
    RegisterError(1, 116, "Failed to update the BMC firmware.");
[[maybe_unused]] static const int kUpdateManagementEngineFailed =
    RegisterError(1, 117, "Failed to update the management engine firmware.");
[[maybe_unused]] static const int kUpdateFruSdrFailed =
    RegisterError(1, 118, "Failed to update the FRU and SDR data.");
[[maybe_unused]] static const int kUpdatePowerSupplyFailed =
    RegisterError(1, 119, "Failed to update the power supply firmware.");
[[maybe_unused]] static const int kUpdateAdapterFailed =
    RegisterError(1, 120, "Failed to update the network adapter firmware.");
[[maybe_unused]] static const int kUpdateRaidFailed =
    RegisterError(1, 121, "Failed to update the RAID controller firmware.");
[[maybe_unused]] static const int kUpdateDriveFailed =
    RegisterError(1, 122, "Failed to update the drive firmware.");
[[maybe_unused]] static const int kUpdateBackplaneFailed =
    RegisterError(1, 123, "Failed to update the backplane firmware.");
[[maybe_unused]] static const int kUpdateRunning =
    RegisterError(1, 124, "Another firmware update is in progress.");
[[maybe_unused]] static const int kUpdateResetFailed =
    RegisterError(1, 125, "The server could not be reset after the firmware update.");

// Category 2: power control of the server.
[[maybe_unused]] static const int kPowerStateUnread =
    RegisterError(2, 116, "Failed to read the power state.");
[[maybe_unused]] static const int kPowerOnFailed =
    RegisterError(2, 117, "Failed to power on the server.");
[[maybe_unused]] static const int kPowerOffFailed =
    RegisterError(2, 118, "Failed to power off the server.");
[[maybe_unused]] static const int kPowerCycleFailed =
    RegisterError(2, 119, "Failed to power cycle the server.");
[[maybe_unused]] static const int kPowerResetFailed =
    RegisterError(2, 120, "Failed to reset the server.");
[[maybe_unused]] static const int kPowerShutdownTimeout =
    RegisterError(2, 121, "The operating system did not shut down in time.");
[[maybe_unused]] static const int kPowerButtonLocked =
    RegisterError(2, 122, "The power control is locked out on this server.");
[[maybe_unused]] static const int kPowerPolicyFailed =
    RegisterError(2, 123, "Failed to set the power restore policy.");
[[maybe_unused]] static const int kPowerLimitFailed =
    RegisterError(2, 124, "Failed to set the power limit.");
[[maybe_unused]] static const int kPowerLimitRange =
    RegisterError(2, 125, "The power limit is out of the range of the server.");

// Category 3: diagnostics of the hardware.
[[maybe_unused]] static const int kDiagsNotStarted =
    RegisterError(3, 120, "Failed to start the diags.");
[[maybe_unused]] static const int kDiagsTimeout =
    RegisterError(3, 121, "Timeout to complete the diags.");
[[maybe_unused]] static const int kDiagsAborted =
    RegisterError(3, 122, "The diags were aborted before their end.");
[[maybe_unused]] static const int kDiagsTestUnknown =
    RegisterError(3, 123, "The diags have no test of that name.");
[[maybe_unused]] static const int kDiagsTestFailed =
    RegisterError(3, 124, "At least one test of the diags failed.");
[[maybe_unused]] static const int kDiagsResultUnread =
    RegisterError(3, 125, "Failed to get the result of the diags.");

// Category 4: RAID controllers, volumes and drives.
[[maybe_unused]] static const int kRaidControllerMissing =
    RegisterError(4, 88, "No RAID controller was found.");
[[maybe_unused]] static const int kRaidControllerIndex =
    RegisterError(4, 89, "There is no RAID controller with this number.");
[[maybe_unused]] static const int kRaidControllerUnsupported =
    RegisterError(4, 90, "The RAID controller is not supported.");
[[maybe_unused]] static const int kRaidControllerSilent =
    RegisterError(4, 91, "The RAID controller does not answer.");
[[maybe_unused]] static const int kRaidControllerUnread =
    RegisterError(4, 92, "Failed to read the properties of the RAID controller.");
[[maybe_unused]] static const int kRaidControllerNotSet =
    RegisterError(4, 93, "Failed to set a property of the RAID controller.");
[[maybe_unused]] static const int kRaidControllerResetFailed =
    RegisterError(4, 94, "Failed to restore the factory settings of the RAID controller.");
[[maybe_unused]] static const int kRaidDriveMissing =
    RegisterError(4, 95, "There is no drive in this slot.");
[[maybe_unused]] static const int kRaidDriveListUnread =
    RegisterError(4, 96, "Failed to read the list of drives.");
[[maybe_unused]] static const int kRaidDriveUnread =
    RegisterError(4, 97, "Failed to read the details of the drive.");
[[maybe_unused]] static const int kRaidDriveInUse =
    RegisterError(4, 98, "The drive already belongs to a volume.");
[[maybe_unused]] static const int kRaidDriveFailed = RegisterError(4, 99, "The drive has failed.");
[[maybe_unused]] static const int kRaidDriveForeign =
    RegisterError(4, 100, "The drive holds a foreign configuration.");
[[maybe_unused]] static const int kRaidDriveTooSmall =
    RegisterError(4, 101, "The drive is smaller than the volume needs.");
[[maybe_unused]] static const int kRaidDriveTypesMixed =
    RegisterError(4, 102, "Drives of different types cannot form one volume.");
[[maybe_unused]] static const int kRaidDriveCount =
    RegisterError(4, 103, "The number of drives does not suit the RAID level.");
[[maybe_unused]] static const int kRaidLevelUnsupported =
    RegisterError(4, 104, "The RAID controller does not support the RAID level.");
[[maybe_unused]] static const int kRaidSizeInvalid =
    RegisterError(4, 105, "The size of the volume is not valid.");
[[maybe_unused]] static const int kRaidStripeInvalid =
    RegisterError(4, 106, "The stripe size is not valid.");
[[maybe_unused]] static const int kRaidCacheInvalid =
    RegisterError(4, 107, "The cache policy is not valid for this volume.");
[[maybe_unused]] static const int kRaidVolumeLimit =
    RegisterError(4, 108, "The RAID controller cannot hold more volumes.");
[[maybe_unused]] static const int kRaidVolumeMissing =
    RegisterError(4, 109, "There is no volume with this number.");
[[maybe_unused]] static const int kRaidVolumeListUnread =
    RegisterError(4, 110, "Failed to read the list of volumes.");
[[maybe_unused]] static const int kRaidVolumeNotCreated =
    RegisterError(4, 111, "Failed to create the volume.");
[[maybe_unused]] static const int kRaidVolumeNotDeleted =
    RegisterError(4, 112, "Failed to delete the volume.");
[[maybe_unused]] static const int kRaidVolumeNotExpanded =
    RegisterError(4, 113, "Failed to expand the volume.");
[[maybe_unused]] static const int kRaidVolumeNotInitialized =
    RegisterError(4, 114, "Failed to initialize the volume.");
[[maybe_unused]] static const int kRaidVolumeDegraded =
    RegisterError(4, 115, "The volume is degraded.");
[[maybe_unused]] static const int kRaidVolumeOffline =
    RegisterError(4, 116, "The volume is offline.");
[[maybe_unused]] static const int kRaidSpareNotAdded =
    RegisterError(4, 117, "Failed to add the hot spare.");
[[maybe_unused]] static const int kRaidSpareNotRemoved =
    RegisterError(4, 118, "Failed to remove the hot spare.");
[[maybe_unused]] static const int kRaidRebuildNotStarted =
    RegisterError(4, 119, "Failed to start the rebuild of the drive.");
[[maybe_unused]] static const int kRaidRebuildFailed =
    RegisterError(4, 120, "The rebuild of the drive failed.");
[[maybe_unused]] static const int kRaidCheckNotStarted =
    RegisterError(4, 121, "Failed to start the consistency check.");
[[maybe_unused]] static const int kRaidForeignNotImported =
    RegisterError(4, 122, "Failed to import the foreign configuration.");
[[maybe_unused]] static const int kRaidForeignNotCleared =
    RegisterError(4, 123, "Failed to clear the foreign configuration.");
[[maybe_unused]] static const int kRaidBatteryUnread =
    RegisterError(4, 124, "Failed to read the state of the cache backup battery.");
[[maybe_unused]] static const int kRaidConfigurationFailed =
    RegisterError(4, 125, "Failed to apply the RAID configuration file.");

// Category 7: BMC: access over IPMI, its sensors and settings.
[[maybe_unused]] static const int kBmcMissing = RegisterError(7, 96, "No BMC was found.");
[[maybe_unused]] static const int kBmcInterfaceMissing =
    RegisterError(7, 97, "The server has no system interface to the BMC.");
[[maybe_unused]] static const int kBmcSilent = RegisterError(7, 98, "The BMC does not answer.");
[[maybe_unused]] static const int kBmcBusy = RegisterError(7, 99, "The BMC is busy.");
[[maybe_unused]] static const int kBmcCommandInvalid =
    RegisterError(7, 100, "The BMC does not know the command.");
[[maybe_unused]] static const int kBmcDataInvalid =
    RegisterError(7, 101, "The BMC refused the data of the request.");
[[maybe_unused]] static const int kBmcDataLength =
    RegisterError(7, 102, "The BMC refused the length of the request.");
[[maybe_unused]] static const int kBmcPrivilege =
    RegisterError(7, 103, "The BMC requires a higher privilege for the request.");
[[maybe_unused]] static const int kBmcAnswerShort =
    RegisterError(7, 104, "The answer of the BMC is shorter than expected.");
[[maybe_unused]] static const int kBmcDeviceUnread =
    RegisterError(7, 105, "Failed to read the device information of the BMC.");
[[maybe_unused]] static const int kBmcSelfTestUnread =
    RegisterError(7, 106, "Failed to read the self-test result of the BMC.");
[[maybe_unused]] static const int kBmcSelfTestFailed =
    RegisterError(7, 107, "The self-test of the BMC reports a failure.");
[[maybe_unused]] static const int kBmcSensorMissing =
    RegisterError(7, 108, "There is no sensor with this number.");
[[maybe_unused]] static const int kBmcSensorsUnread =
    RegisterError(7, 109, "Failed to read the sensors.");
[[maybe_unused]] static const int kBmcSdrUnread =
    RegisterError(7, 110, "Failed to read the sensor data records.");
[[maybe_unused]] static const int kBmcFruUnread =
    RegisterError(7, 111, "Failed to read the FRU data.");
[[maybe_unused]] static const int kBmcFruNotWritten =
    RegisterError(7, 112, "Failed to write the FRU data.");
[[maybe_unused]] static const int kBmcFruChecksum =
    RegisterError(7, 113, "The checksum of the FRU data is wrong.");
[[maybe_unused]] static const int kBmcChannelMissing =
    RegisterError(7, 114, "The BMC has no such LAN channel.");
[[maybe_unused]] static const int kBmcLanUnread =
    RegisterError(7, 115, "Failed to read the LAN settings of the BMC.");
[[maybe_unused]] static const int kBmcLanNotSet =
    RegisterError(7, 116, "Failed to set the LAN settings of the BMC.");
[[maybe_unused]] static const int kBmcVlanInvalid =
    RegisterError(7, 117, "The VLAN identifier is not between 1 and 4094.");
[[maybe_unused]] static const int kBmcSerialNotSet =
    RegisterError(7, 118, "Failed to set the serial over LAN settings.");
[[maybe_unused]] static const int kBmcClockNotSet =
    RegisterError(7, 119, "Failed to set the clock of the BMC.");
[[maybe_unused]] static const int kBmcWatchdogNotSet =
    RegisterError(7, 120, "Failed to set the watchdog timer.");
[[maybe_unused]] static const int kBmcLedNotSet =
    RegisterError(7, 121, "Failed to set the identification LED.");
[[maybe_unused]] static const int kBmcFanNotSet =
    RegisterError(7, 122, "Failed to set the fan profile.");
[[maybe_unused]] static const int kBmcSettingsNotSaved =
    RegisterError(7, 123, "Failed to save the BMC settings to the file.");
[[maybe_unused]] static const int kBmcSettingsNotRestored =
    RegisterError(7, 124, "Failed to restore the BMC settings from the file.");
[[maybe_unused]] static const int kBmcResetFailed =
    RegisterError(7, 125, "Failed to reset the BMC.");

// Category 10: user accounts of the BMC.
[[maybe_unused]] static const int kUserListUnread =
    RegisterError(10, 116, "Failed to read the list of BMC users.");
[[maybe_unused]] static const int kUserMissing =
    RegisterError(10, 117, "There is no BMC user with this name.");
[[maybe_unused]] static const int kUserExists =
    RegisterError(10, 118, "A BMC user with this name already exists.");
[[maybe_unused]] static const int kUserNoSlot =
    RegisterError(10, 119, "The BMC has no free user slot.");
[[maybe_unused]] static const int kUserNotAdded =
    RegisterError(10, 120, "Failed to add the BMC user.");
[[maybe_unused]] static const int kUserNotDeleted =
    RegisterError(10, 121, "Failed to delete the BMC user.");
[[maybe_unused]] static const int kUserNotEnabled =
    RegisterError(10, 122, "Failed to enable or disable the BMC user.");
[[maybe_unused]] static const int kUserPasswordWeak =
    RegisterError(10, 123, "The password does not meet the rules of the BMC.");
[[maybe_unused]] static const int kUserPasswordNotSet =
    RegisterError(10, 124, "Failed to set the password of the BMC user.");
[[maybe_unused]] static const int kUserPrivilegeNotSet =
    RegisterError(10, 125, "Failed to set the privilege of the BMC user.");

// Category 17: logs of the server.
[[maybe_unused]] static const int kLogsEmpty = RegisterError(17, 124, "There are no logs.");
[[maybe_unused]] static const int kLogsUnread = RegisterError(17, 125, "Failed to get logs.");

// Category 18: system event log and the alerts sent for its events.
[[maybe_unused]] static const int kSelUnread =
    RegisterError(18, 113, "Failed to read the system event log.");
[[maybe_unused]] static const int kSelNotCleared =
    RegisterError(18, 114, "Failed to clear the system event log.");
[[maybe_unused]] static const int kSelFull =
    RegisterError(18, 115, "The system event log is full.");
[[maybe_unused]] static const int kSelChanged =
    RegisterError(18, 117, "The system event log changed while it was read.");
[[maybe_unused]] static const int kSelNotExported =
    RegisterError(18, 118, "Failed to export the system event log.");
[[maybe_unused]] static const int kSelClockUnread =
    RegisterError(18, 119, "Failed to read the clock of the system event log.");
[[maybe_unused]] static const int kAlertFilterUnread =
    RegisterError(18, 120, "Failed to read the event filters.");
[[maybe_unused]] static const int kAlertFilterNotSet =
    RegisterError(18, 121, "Failed to set the event filter.");
[[maybe_unused]] static const int kAlertDestinationInvalid =
    RegisterError(18, 122, "The alert destination is not valid.");
[[maybe_unused]] static const int kAlertDestinationNotSet =
    RegisterError(18, 123, "Failed to set the alert destination.");
[[maybe_unused]] static const int kAlertMailNotSet =
    RegisterError(18, 124, "Failed to set the mail server for alerts.");
[[maybe_unused]] static const int kAlertTestNotSent =
    RegisterError(18, 125, "Failed to send the test alert.");

// Category 20: asset tag of the chassis.
[[maybe_unused]] static const int kAssetTagNotSet =
    RegisterError(20, 125, "Failed to set the asset tag.");

// Category 24: deployment of an operating system.
[[maybe_unused]] static const int kDeployImageMissing =
    RegisterError(24, 104, "The installation image does not exist.");
[[maybe_unused]] static const int kDeployImageUnreadable =
    RegisterError(24, 105, "The installation image cannot be read.");
[[maybe_unused]] static const int kDeployImageUnsupported =
    RegisterError(24, 106, "The operating system of the installation image is not supported.");
[[maybe_unused]] static const int kDeployImageEdition =
    RegisterError(24, 107, "The installation image does not hold the chosen edition.");
[[maybe_unused]] static const int kDeployProductKey =
    RegisterError(24, 108, "The product key is not valid.");
[[maybe_unused]] static const int kDeployAnswerFile =
    RegisterError(24, 109, "The answer file for the unattended installation is not valid.");
[[maybe_unused]] static const int kDeployAnswerNotWritten =
    RegisterError(24, 112, "Failed to create the answer file for the unattended installation.");
[[maybe_unused]] static const int kDeployNoTarget =
    RegisterError(24, 113, "There is no drive to install the operating system on.");
[[maybe_unused]] static const int kDeployTargetTooSmall =
    RegisterError(24, 114, "The target drive is too small for the operating system.");
[[maybe_unused]] static const int kDeployTargetReadOnly =
    RegisterError(24, 115, "The target drive is write-protected.");
[[maybe_unused]] static const int kDeployPartitionFailed =
    RegisterError(24, 116, "Failed to partition the target drive.");
[[maybe_unused]] static const int kDeployFormatFailed =
    RegisterError(24, 117, "Failed to format the target drive.");
[[maybe_unused]] static const int kDeployCopyFailed =
    RegisterError(24, 118, "Failed to copy the installation files.");
[[maybe_unused]] static const int kDeployDriverMissing =
    RegisterError(24, 119, "The driver package for the operating system is missing.");
[[maybe_unused]] static const int kDeployDriverFailed =
    RegisterError(24, 120, "Failed to add the drivers to the installation.");
[[maybe_unused]] static const int kDeployShareUnreachable =
    RegisterError(24, 121, "The network share with the installation image cannot be reached.");
[[maybe_unused]] static const int kDeployBootFailed =
    RegisterError(24, 122, "The server did not start from the installation image.");
[[maybe_unused]] static const int kDeployTimeout =
    RegisterError(24, 123, "The installation of the operating system did not finish in time.");
[[maybe_unused]] static const int kDeployAborted =
    RegisterError(24, 124, "The installation of the operating system was aborted.");
[[maybe_unused]] static const int kDeployLogUnread =
    RegisterError(24, 125, "Failed to get the log of the installation.");

// Category 35: sensor thresholds.
[[maybe_unused]] static const int kThresholdUnread =
    RegisterError(35, 122, "Failed to read the thresholds of the sensor.");
[[maybe_unused]] static const int kThresholdUnsupported =
    RegisterError(35, 123, "The sensor has no settable thresholds.");
[[maybe_unused]] static const int kThresholdOrder =
    RegisterError(35, 124, "The thresholds of the sensor are not in ascending order.");
[[maybe_unused]] static const int kThresholdNotSet =
    RegisterError(35, 125, "Failed to set the thresholds of the sensor.");

// Category 44: REST API of the BMC.
[[maybe_unused]] static const int kRestNotConnected =
    RegisterError(44, 121, "Failed to connect BMC REST API.");
[[maybe_unused]] static const int kRestLoginFailed =
    RegisterError(44, 122, "Failed to log in to the BMC REST API.");
[[maybe_unused]] static const int kRestResourceMissing =
    RegisterError(44, 123, "The BMC REST API does not have the resource.");
[[maybe_unused]] static const int kRestRequestRefused =
    RegisterError(44, 124, "The BMC REST API refused the request.");
[[maybe_unused]] static const int kRestAnswerInvalid =
    RegisterError(44, 125, "The answer of the BMC REST API is not valid JSON.");

// Category 58: certificates of the BMC's web server.
[[maybe_unused]] static const int kCertificateInvalid =
    RegisterError(58, 123, "The certificate file is not valid.");
[[maybe_unused]] static const int kCertificateKeyMismatch =
    RegisterError(58, 124, "The private key does not belong to the certificate.");
[[maybe_unused]] static const int kCertificateNotInstalled =
    RegisterError(58, 125, "Failed to install the certificate on the BMC.");

// Category 59: BIOS settings.
[[maybe_unused]] static const int kBiosSettingsUnread =
    RegisterError(59, 80, "Failed to read the BIOS settings.");
[[maybe_unused]] static const int kBiosSettingUnknown =
    RegisterError(59, 81, "The BIOS does not know the setting.");
[[maybe_unused]] static const int kBiosSettingReadOnly =
    RegisterError(59, 82, "The BIOS setting cannot be changed.");
[[maybe_unused]] static const int kBiosSettingHidden =
    RegisterError(59, 83, "Another BIOS setting hides this setting.");
[[maybe_unused]] static const int kBiosValueUnknown =
    RegisterError(59, 84, "The BIOS setting does not have this value.");
[[maybe_unused]] static const int kBiosValueRange =
    RegisterError(59, 85, "The value is out of the range of the BIOS setting.");
[[maybe_unused]] static const int kBiosValueStep =
    RegisterError(59, 86, "The value does not match the step of the BIOS setting.");
[[maybe_unused]] static const int kBiosTextTooLong =
    RegisterError(59, 87, "The text is too long for the BIOS setting.");
[[maybe_unused]] static const int kBiosSettingNotSet =
    RegisterError(59, 88, "Failed to change the BIOS setting.");
[[maybe_unused]] static const int kBiosNotApplied =
    RegisterError(59, 89, "The BIOS did not apply the changed settings at the restart.");
[[maybe_unused]] static const int kBiosDefaultsNotLoaded =
    RegisterError(59, 90, "Failed to load the default BIOS settings.");
[[maybe_unused]] static const int kBiosFileMissing =
    RegisterError(59, 91, "The BIOS settings file does not exist.");
[[maybe_unused]] static const int kBiosFileFormat =
    RegisterError(59, 92, "The BIOS settings file does not have the expected format.");
[[maybe_unused]] static const int kBiosFileVersion =
    RegisterError(59, 93, "The BIOS settings file belongs to another BIOS version.");
[[maybe_unused]] static const int kBiosFileNotWritten =
    RegisterError(59, 94, "Failed to save the BIOS settings to the file.");
[[maybe_unused]] static const int kBiosFileNotApplied =
    RegisterError(59, 95, "Failed to apply the BIOS settings from the file.");
[[maybe_unused]] static const int kBiosPasswordRequired =
    RegisterError(59, 111, "The BIOS administrator password is required.");
[[maybe_unused]] static const int kBiosPasswordWrong =
    RegisterError(59, 112, "The BIOS administrator password is wrong.");
[[maybe_unused]] static const int kBiosPasswordLength =
    RegisterError(59, 113, "The length of the new BIOS password is not allowed.");
[[maybe_unused]] static const int kBiosPasswordWeak =
    RegisterError(59, 114, "The new BIOS password is too simple.");
[[maybe_unused]] static const int kBiosPasswordNotSet =
    RegisterError(59, 115, "Failed to set the BIOS password.");
[[maybe_unused]] static const int kBiosPasswordNotCleared =
    RegisterError(59, 116, "Failed to clear the BIOS password.");
[[maybe_unused]] static const int kBiosLocked =
    RegisterError(59, 117, "The BIOS settings are locked until the next restart.");
[[maybe_unused]] static const int kBiosVersionUnread =
    RegisterError(59, 118, "Failed to read the BIOS version.");
[[maybe_unused]] static const int kBiosSmbiosUnread =
    RegisterError(59, 119, "Failed to read the SMBIOS tables.");
[[maybe_unused]] static const int kBiosVariableUnread =
    RegisterError(59, 120, "Failed to read the BIOS variable.");
[[maybe_unused]] static const int kBiosVariableNotWritten =
    RegisterError(59, 121, "Failed to write the BIOS variable.");
[[maybe_unused]] static const int kBiosVariableRoom =
    RegisterError(59, 122, "There is no room for another BIOS variable.");
[[maybe_unused]] static const int kBiosSecureBootUnread =
    RegisterError(59, 123, "Failed to read the secure boot state.");
[[maybe_unused]] static const int kBiosSecureBootNotSet =
    RegisterError(59, 124, "Failed to change the secure boot state.");
[[maybe_unused]] static const int kBiosInterfaceMissing =
    RegisterError(59, 125, "The BIOS offers no interface for its settings.");

// Category 61: boot order.
[[maybe_unused]] static const int kBootOrderUnread =
    RegisterError(61, 122, "Failed to read the boot order.");
[[maybe_unused]] static const int kBootDeviceMissing =
    RegisterError(61, 123, "The boot order does not hold the device.");
[[maybe_unused]] static const int kBootOrderNotSet =
    RegisterError(61, 124, "Failed to set the boot order.");
[[maybe_unused]] static const int kBootOnceNotSet =
    RegisterError(61, 125, "Failed to set the device for the next boot.");

// Category 62: network adapters of the operating system: settings of one server.
[[maybe_unused]] static const int kNetworkRead =
    RegisterError(62, 123, "Read network configure error.");
[[maybe_unused]] static const int kNetworkAddAddress =
    RegisterError(62, 124, "Add IP address error.");
[[maybe_unused]] static const int kNetworkRestore =
    RegisterError(62, 125, "Restore network configure error.");

// Category 63: network adapters of the operating system: settings of a group of servers.
[[maybe_unused]] static const int kGroupNetworkAddAddress =
    RegisterError(63, 124, "Add IP address error.");
[[maybe_unused]] static const int kGroupNetworkRestore =
    RegisterError(63, 125, "Restore network configure error.");

// Category 64: virtual media of the BMC.
[[maybe_unused]] static const int kMediaImageUnreachable =
    RegisterError(64, 122, "The image for the virtual media cannot be reached.");
[[maybe_unused]] static const int kMediaInUse =
    RegisterError(64, 123, "Another session uses the virtual media.");
[[maybe_unused]] static const int kMediaNotMounted =
    RegisterError(64, 124, "Failed to mount the virtual media.");
[[maybe_unused]] static const int kMediaNotUnmounted =
    RegisterError(64, 125, "Failed to unmount the virtual media.");

}  // namespace pq::errors
