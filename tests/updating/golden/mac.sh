#!/bin/bash
exec > /tmp/fernwick_update.log 2>&1
echo "[$(date)] Update script started"
echo "PID: $$"

echo "Waiting for app to close..."
sleep 3

# Verify app has quit
while pgrep -x "Fernwick" > /dev/null 2>&1; do
    echo "App still running, waiting..."
    sleep 1
done

echo "Deleting old app at: /Applications/Fernwick.app"
rm -rf "/Applications/Fernwick.app"

echo "Copying new app from: /tmp/FernwickUpdate_0/Fernwick.app"
cp -R "/tmp/FernwickUpdate_0/Fernwick.app" "/Applications/Fernwick.app"

echo "Removing quarantine..."
xattr -cr "/Applications/Fernwick.app"

echo "Registering with LaunchServices..."
/System/Library/Frameworks/CoreServices.framework/Versions/Current/Frameworks/LaunchServices.framework/Versions/Current/Support/lsregister -f "/Applications/Fernwick.app" 2>/dev/null

echo "Reopening..."
sleep 1

# Retry open up to 3 times
for i in 1 2 3; do
    open "/Applications/Fernwick.app" && break
    echo "Open attempt $i failed, retrying in 2s..."
    sleep 2
done

echo "[$(date)] Update finished!"