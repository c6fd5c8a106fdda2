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

echo "Deleting old app at: /opt/Fernwick.app"
rm -rf "/opt/Fernwick.app"

echo "Copying new app from: /tmp/FernwickUpdate_0/Fernwick.app"
cp -R "/tmp/FernwickUpdate_0/Fernwick.app" "/opt/Fernwick.app"

echo "Making the program executable..."
program="/opt/Fernwick.app"
[ -d "$program" ] && program="$program/Fernwick"
chmod 755 "$program"
chmod -R a+rX "/opt/Fernwick.app"

echo "Registering with the desktop..."
environment='export '\''DISPLAY=:0'\''
export '\''HOME=/home/o'\''\'\'''\''neil'\''
export '\''LANG=vi_VN.UTF-8'\''
export '\''QUOTED=a "b" $(c) `T` \
 e'\''
'
person=(setpriv --reuid=1000 --regid=100 --init-groups env -i
    /bin/bash -c 'eval "$(cat <&3)"; exec "$@" 3<&-' bash)
"${person[@]}" sh -c 'update-desktop-database "${XDG_DATA_HOME:-$HOME/.local/share}/applications"' 3<<< "$environment" > /dev/null 2>&1

echo "Reopening..."
sleep 1

# In a session of its own; the script's background has INT and QUIT ignored, nohup HUP
start() {
    (cd / && exec setsid "${person[@]}" env --default-signal=HUP,INT,QUIT "$program" 3<<< "$environment" < /dev/null > /dev/null 2>&1) &
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