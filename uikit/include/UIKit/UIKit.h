// Everything of the headless UIKit.
#pragma once

#include <UIKit/CALayer.h>
#include <UIKit/CGColor.h>
#include <UIKit/device_profile.h>
#include <UIKit/UIAlertPanelView.h>
#include <UIKit/UIAlertView.h>
#include <UIKit/UIColor.h>
#include <UIKit/UIControl.h>
#include <UIKit/UIDevice.h>
#include <UIKit/UIDocumentMenuViewController.h>
#include <UIKit/UIDocumentPickerViewController.h>
#include <UIKit/UIGraphics.h>
#include <UIKit/UIImage.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINavigationBar.h>
#include <UIKit/UINavigationController.h>
#include <UIKit/UIPopoverController.h>
#include <UIKit/UIResponder.h>
#include <UIKit/UIScreen.h>
#include <UIKit/UISwitch.h>
#include <UIKit/UITableView.h>
#include <UIKit/UITableViewCell.h>
#include <UIKit/UIView.h>
#include <UIKit/UIViewController.h>
#include <UIKit/UIWindow.h>
