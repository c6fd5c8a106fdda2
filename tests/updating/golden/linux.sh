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

echo "Deleting old app at: /home/someone/Apps/Fernwick.AppImage"
rm -rf "/home/someone/Apps/Fernwick.AppImage"

echo "Copying new app from: /tmp/Fernwick-4.0.AppImage"
cp -R "/tmp/Fernwick-4.0.AppImage" "/home/someone/Apps/Fernwick.AppImage"

echo "Making the program executable..."
program="/home/someone/Apps/Fernwick.AppImage"
[ -d "$program" ] && program="$program/Fernwick"
chmod 755 "$program"

echo "Registering with the desktop..."
sh -c 'update-desktop-database "${XDG_DATA_HOME:-$HOME/.local/share}/applications"' > /dev/null 2>&1

echo "Reopening..."
sleep 1

# In a session of its own; the script's background has INT and QUIT ignored, nohup HUP
start() {
    (cd / && exec setsid env --default-signal=HUP,INT,QUIT "$program" < /dev/null > /dev/null 2>&1) &
    sleep 1
    kill -0 $! 2> /dev/null || wait $!
}

# Retry open up to 3 times
for i in 1 2 3; do
    start && break
    echo "Open attempt $i failed, retrying in 2s..."
    sleep 2
done

echo "[$(date)] Update finished!"