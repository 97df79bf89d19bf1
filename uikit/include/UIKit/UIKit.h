// Everything of the headless UIKit.
#pragma once

#include <UIKit/CALayer.h>
#include <UIKit/DeviceProfile.h>
#include <UIKit/UIAlertView.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIDocumentMenuViewController.h>
#include <UIKit/UIDocumentPickerViewController.h>
#include <UIKit/UINavigationController.h>
#include <UIKit/UIPopoverController.h>
#include <UIKit/UIResponder.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UIView.h>
#include <UIKit/UIViewController.h>
#include <UIKit/UIWindow.h>
