#include "platform/macos/desktop/OpenURL.h"

#include "platform/macos/service/ErrorLine.h"
#include "platform/macos/service/FoundationText.h"

#import <AppKit/AppKit.h>

namespace ventolith::platform {

namespace {

constexpr std::size_t longestURL = 8192;

/// None for what is no web address. Components are strict, where a URL of its own takes nearly anything.
NSURL* webAddress(const std::string& text) {
  if (text.size() > longestURL || text.find('\0') != text.npos) return nil;
  NSURLComponents* const components = [NSURLComponents componentsWithString:nsString(text)];
  NSString* const scheme = components.scheme.lowercaseString;
  const bool isOfTheWeb = [scheme isEqualToString:@"http"] || [scheme isEqualToString:@"https"];
  return isOfTheWeb && components.host.length > 0 ? components.URL : nil;
}

} // namespace

void openURL(const std::string& url) {
  @autoreleasepool {
    NSURL* const address = webAddress(url);
    // Not quoted: it may be anything, and standard error may be a terminal.
    if (address == nil) return sayOnStandardError("a page was not opened: it has no web address");
    const auto ended = ^(NSRunningApplication*, NSError* error) {
      if (error == nil) return;
      sayOnStandardError("the page " + textOf(address.absoluteString) +
                         " cannot be opened: " + textOf(error));
    };
    [NSWorkspace.sharedWorkspace openURL:address
                           configuration:[NSWorkspaceOpenConfiguration configuration]
                       completionHandler:ended];
  }
}

} // namespace ventolith::platform
