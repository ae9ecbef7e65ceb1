<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_CN">
<context>
    <name>satwalk</name>
    <message>
        <source>取消</source>
        <comment>40004</comment>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>确定</source>
        <comment>40005</comment>
        <translation>OK</translation>
    </message>
    <message>
        <source>搜索</source>
        <comment>40060</comment>
        <translation>Search</translation>
    </message>
    <message>
        <source>取消</source>
        <comment>40061</comment>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>取消</source>
        <comment>40071</comment>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>确定</source>
        <comment>40073</comment>
        <translation>OK</translation>
    </message>
    <message>
        <source>菜单</source>
        <comment>40077</comment>
        <translation>Menu</translation>
    </message>
    <message>
        <source>视图</source>
        <comment>40078</comment>
        <translation>View</translation>
    </message>
    <message>
        <source>海拔</source>
        <comment>40081</comment>
        <translation>Altitude</translation>
    </message>
    <message>
        <source>速度</source>
        <comment>40082</comment>
        <translation>Speed</translation>
    </message>
    <message>
        <source>方位角</source>
        <comment>40083</comment>
        <translation>Course</translation>
    </message>
    <message>
        <source>卫星数</source>
        <comment>40084</comment>
        <translation>Satellites</translation>
    </message>
    <message>
        <source>警报</source>
        <comment>40088</comment>
        <translation>Alarm</translation>
    </message>
    <message>
        <source>关闭</source>
        <comment>40089</comment>
        <translation>Off</translation>
    </message>
    <message>
        <source>请设置至少2个参照点！</source>
        <comment>40090</comment>
        <translation>Please set at least 2 reference points!</translation>
    </message>
    <message>
        <source>当前位置已超出地图范围！</source>
        <comment>40091</comment>
        <translation>The current position is outside the map!</translation>
    </message>
    <message>
        <source>请首先在GPS设置中配置GPS接收机。</source>
        <comment>40092</comment>
        <translation>Please set up a GPS receiver in GPS Settings first.</translation>
    </message>
    <message>
        <source>自动配置GPS接收机失败 (%s)

请检查是否存在空闲可用COM端口。</source>
        <comment>40093</comment>
        <translation>Could not set up the GPS receiver automatically (%s)

Please check that a COM port is free.</translation>
    </message>
    <message>
        <source>无法连接GPS接收机 (%s)

请检查GPS接收机连接设置后重试。</source>
        <comment>40094</comment>
        <translation>Cannot connect to the GPS receiver (%s)

Please check the receiver's connection settings and try again.</translation>
    </message>
    <message>
        <source>连接GPS接收机失败: %s
</source>
        <comment>40095</comment>
        <translation>Connecting to the GPS receiver failed: %s
</translation>
    </message>
    <message>
        <source>与GPS接收机连接断开！

请检查GPS接收机状态并确定其在有效的范围内。</source>
        <comment>40096</comment>
        <translation>Connection to the GPS receiver lost!

Please check the receiver and make sure it is within range.</translation>
    </message>
    <message>
        <source>接收GPS数据超时！

GPS接收机也许出现故障需要重新启动。

注意: 如果程序停止响应，请关闭GPS接收机，程序将恢复正常。</source>
        <comment>40097</comment>
        <translation>No GPS data received in time!

The GPS receiver may have a fault and need restarting.

Note: if the program stops responding, switch the GPS receiver off and the program will recover.</translation>
    </message>
    <message>
        <source>您确定要退出程序？</source>
        <comment>40098</comment>
        <translation>Are you sure you want to exit?</translation>
    </message>
    <message>
        <source>搜索蓝牙GPS接收机失败: %s

请重新再次搜索！</source>
        <comment>40101</comment>
        <translation>Searching for Bluetooth GPS receivers failed: %s

Please search again!</translation>
    </message>
    <message>
        <source>请先开启蓝牙！</source>
        <comment>40102</comment>
        <translation>Please switch Bluetooth on first!</translation>
    </message>
    <message>
        <source>没有找到蓝牙GPS接收机

请确认蓝牙GPS接收机已开启并重新搜索！</source>
        <comment>40103</comment>
        <translation>No Bluetooth GPS receiver found

Please make sure the receiver is on and search again!</translation>
    </message>
    <message>
        <source>导入 %s 失败！没有足够内存空间！</source>
        <comment>40104</comment>
        <translation>Importing %s failed! Not enough memory!</translation>
    </message>
    <message>
        <source>无法打开 %s，记录已被打开！</source>
        <comment>40105</comment>
        <translation>Cannot open %s: the log is being recorded!</translation>
    </message>
    <message>
        <source>停止 GPS	[0]</source>
        <comment>40108</comment>
        <translation>Stop GPS	[0]</translation>
    </message>
    <message>
        <source>启动 GPS	[0]</source>
        <comment>40109</comment>
        <translation>Start GPS	[0]</translation>
    </message>
    <message>
        <source>激活参照点</source>
        <comment>40111</comment>
        <translation>Activate Reference Point</translation>
    </message>
    <message>
        <source>重试</source>
        <comment>40112</comment>
        <translation>Retry</translation>
    </message>
    <message>
        <source>可用</source>
        <comment>40113</comment>
        <translation>available</translation>
    </message>
    <message>
        <source>自动</source>
        <comment>40114</comment>
        <translation>Auto</translation>
    </message>
    <message>
        <source>系统设置</source>
        <comment>40115</comment>
        <translation>System Settings</translation>
    </message>
    <message>
        <source>打开文件</source>
        <comment>40118</comment>
        <translation>Open File</translation>
    </message>
    <message>
        <source>北纬</source>
        <comment>40119</comment>
        <translation>North</translation>
    </message>
    <message>
        <source>南纬</source>
        <comment>40120</comment>
        <translation>South</translation>
    </message>
    <message>
        <source>东经</source>
        <comment>40121</comment>
        <translation>East</translation>
    </message>
    <message>
        <source>西经</source>
        <comment>40122</comment>
        <translation>West</translation>
    </message>
    <message>
        <source>自动开启/关闭蓝牙失败！</source>
        <comment>40192</comment>
        <translation>Switching Bluetooth on or off automatically failed!</translation>
    </message>
    <message>
        <source>插入当前GPS座标</source>
        <comment>40199</comment>
        <translation>From GPS</translation>
    </message>
    <message>
        <source>向上</source>
        <comment>40200</comment>
        <translation>Up</translation>
    </message>
    <message>
        <source>Satwalk</source>
        <comment>40208</comment>
        <translation>Satwalk</translation>
    </message>
    <message>
        <source>轨迹信息</source>
        <comment>40301</comment>
        <translation>Track Info</translation>
    </message>
    <message>
        <source>%s 不是可以读取的轨迹文件 (轨迹记录、GPX 或 NMEA)。</source>
        <comment>40302</comment>
        <translation>%s is not a track file that can be read (track log, GPX or NMEA).</translation>
    </message>
    <message>
        <source>%s 不完整或已损坏，只显示了其中完整的部分。</source>
        <comment>40303</comment>
        <translation>%s is incomplete or damaged; only its complete part is shown.</translation>
    </message>
    <message>
        <source>同时保存 GPX 轨迹</source>
        <comment>40304</comment>
        <translation>Also save a GPX track</translation>
    </message>
    <message>
        <source>距离</source>
        <comment>40310</comment>
        <translation>Distance</translation>
    </message>
    <message>
        <source>时长</source>
        <comment>40311</comment>
        <translation>Duration</translation>
    </message>
    <message>
        <source>移动时间</source>
        <comment>40312</comment>
        <translation>Moving time</translation>
    </message>
    <message>
        <source>平均速度</source>
        <comment>40313</comment>
        <translation>Average speed</translation>
    </message>
    <message>
        <source>最高速度</source>
        <comment>40314</comment>
        <translation>Maximum speed</translation>
    </message>
    <message>
        <source>累计爬升</source>
        <comment>40315</comment>
        <translation>Total ascent</translation>
    </message>
    <message>
        <source>累计下降</source>
        <comment>40316</comment>
        <translation>Total descent</translation>
    </message>
    <message>
        <source>最低海拔</source>
        <comment>40317</comment>
        <translation>Lowest elevation</translation>
    </message>
    <message>
        <source>最高海拔</source>
        <comment>40318</comment>
        <translation>Highest elevation</translation>
    </message>
    <message>
        <source>点数</source>
        <comment>40319</comment>
        <translation>Points</translation>
    </message>
    <message>
        <source>海拔剖面</source>
        <comment>40320</comment>
        <translation>Elevation profile</translation>
    </message>
    <message>
        <source>速度剖面</source>
        <comment>40321</comment>
        <translation>Speed profile</translation>
    </message>
    <message>
        <source>没有数据</source>
        <comment>40322</comment>
        <translation>No data</translation>
    </message>
    <message>
        <source>当前记录</source>
        <comment>40323</comment>
        <translation>Current recording</translation>
    </message>
    <message>
        <source>GPS 信息	[1]</source>
        <comment>41001</comment>
        <translation>GPS Information	[1]</translation>
    </message>
    <message>
        <source>卫星</source>
        <comment>41002</comment>
        <translation>Satellites</translation>
    </message>
    <message>
        <source>卫星图	[2]</source>
        <comment>41003</comment>
        <translation>Sky Plot	[2]</translation>
    </message>
    <message>
        <source>卫星数据	[3]</source>
        <comment>41004</comment>
        <translation>Satellite Data	[3]</translation>
    </message>
    <message>
        <source>地图</source>
        <comment>41005</comment>
        <translation>Map</translation>
    </message>
    <message>
        <source>指南针	[6]</source>
        <comment>41006</comment>
        <translation>Compass	[6]</translation>
    </message>
    <message>
        <source>时速	[7]</source>
        <comment>41007</comment>
        <translation>Speedometer	[7]</translation>
    </message>
    <message>
        <source>世界地图	[4]</source>
        <comment>41008</comment>
        <translation>World Map	[4]</translation>
    </message>
    <message>
        <source>显示载入地图</source>
        <comment>41009</comment>
        <translation>Show Loaded Map</translation>
    </message>
    <message>
        <source>显示参照点</source>
        <comment>41010</comment>
        <translation>Show Reference Points</translation>
    </message>
    <message>
        <source>显示轨迹</source>
        <comment>41011</comment>
        <translation>Show Tracks</translation>
    </message>
    <message>
        <source>显示 POI</source>
        <comment>41012</comment>
        <translation>Show POIs</translation>
    </message>
    <message>
        <source>GPS 设置	[*]</source>
        <comment>41013</comment>
        <translation>GPS Settings	[*]</translation>
    </message>
    <message>
        <source>POI</source>
        <comment>41014</comment>
        <translation>POI</translation>
    </message>
    <message>
        <source>轨迹</source>
        <comment>41015</comment>
        <translation>Track</translation>
    </message>
    <message>
        <source>时速警报</source>
        <comment>41016</comment>
        <translation>Speed Alarm</translation>
    </message>
    <message>
        <source>单位</source>
        <comment>41017</comment>
        <translation>Units</translation>
    </message>
    <message>
        <source>米制</source>
        <comment>41018</comment>
        <translation>Metric</translation>
    </message>
    <message>
        <source>英制</source>
        <comment>41019</comment>
        <translation>Imperial</translation>
    </message>
    <message>
        <source>海里</source>
        <comment>41020</comment>
        <translation>Nautical</translation>
    </message>
    <message>
        <source>选项</source>
        <comment>41021</comment>
        <translation>Options</translation>
    </message>
    <message>
        <source>帮助</source>
        <comment>41022</comment>
        <translation>Help</translation>
    </message>
    <message>
        <source>用户手册</source>
        <comment>41023</comment>
        <translation>User Manual</translation>
    </message>
    <message>
        <source>关于</source>
        <comment>41024</comment>
        <translation>About</translation>
    </message>
    <message>
        <source>退出</source>
        <comment>41025</comment>
        <translation>Exit</translation>
    </message>
    <message>
        <source>加载地图</source>
        <comment>41026</comment>
        <translation>Load Map</translation>
    </message>
    <message>
        <source>最近载入地图</source>
        <comment>41027</comment>
        <translation>Recent Maps</translation>
    </message>
    <message>
        <source>空</source>
        <comment>41028</comment>
        <translation>Empty</translation>
    </message>
    <message>
        <source>设置参照点 %s</source>
        <comment>41029</comment>
        <translation>Set Reference Point %s</translation>
    </message>
    <message>
        <source>导入 POI</source>
        <comment>41030</comment>
        <translation>Import POIs</translation>
    </message>
    <message>
        <source>全部删除</source>
        <comment>41031</comment>
        <translation>Delete All</translation>
    </message>
    <message>
        <source>间隔 %ss</source>
        <comment>41032</comment>
        <translation>Every %s s</translation>
    </message>
    <message>
        <source>保存轨迹记录</source>
        <comment>41033</comment>
        <translation>Record Track Log</translation>
    </message>
    <message>
        <source>查看轨迹记录</source>
        <comment>41034</comment>
        <translation>View Track Log</translation>
    </message>
    <message>
        <source>关闭轨迹记录</source>
        <comment>41035</comment>
        <translation>Close Track Log</translation>
    </message>
    <message>
        <source>%s	[5]</source>
        <comment>41036</comment>
        <translation>%s	[5]</translation>
    </message>
    <message>
        <source>关闭地图</source>
        <comment>41037</comment>
        <translation>Close Map</translation>
    </message>
    <message>
        <source>Satwalk %s
GPS 显示与记录 (GPS display and logging)</source>
        <comment>41101</comment>
        <translation>Satwalk %s
GPS display and logging</translation>
    </message>
    <message>
        <source>Create Time Timer failed: %s

Press OK to continue...</source>
        <comment>41103</comment>
        <translation>Could not create the clock timer: %s

Press OK to continue.</translation>
    </message>
    <message>
        <source>警报声音无法播放，警报在屏幕上显示</source>
        <comment>41104</comment>
        <translation>The alarm sound cannot be played; the alarm is shown on the screen</translation>
    </message>
    <message>
        <source>轨迹记录 %s 太大：只显示了前 %s 个点。</source>
        <comment>41601</comment>
        <translation>Track log %s is too large: only its first %s points are shown.</translation>
    </message>
    <message>
        <source>POI 文件 %s 太大：只导入了前 %s 个 POI。</source>
        <comment>41602</comment>
        <translation>POI file %s is too large: only its first %s POIs were imported.</translation>
    </message>
    <message>
        <source>轨迹记录失败：%s</source>
        <comment>41603</comment>
        <translation>Track recording failed: %s</translation>
    </message>
    <message>
        <source>NMEA 记录失败：%s</source>
        <comment>41604</comment>
        <translation>NMEA recording failed: %s</translation>
    </message>
    <message>
        <source>磁盘已满</source>
        <comment>41605</comment>
        <translation>disk full</translation>
    </message>
    <message>
        <source>文件夹不存在</source>
        <comment>41606</comment>
        <translation>folder missing</translation>
    </message>
    <message>
        <source>没有写入权限</source>
        <comment>41607</comment>
        <translation>no permission to write</translation>
    </message>
    <message>
        <source>写入错误</source>
        <comment>41608</comment>
        <translation>write error</translation>
    </message>
    <message>
        <source>无法保存设置到 %s：%s

本次更改的设置将会丢失。</source>
        <comment>41609</comment>
        <translation>Cannot save the settings to %s: %s

The settings changed in this session will be lost.</translation>
    </message>
    <message>
        <source>无法读取参照点文件 %s，地图未校准。

原文件不会被覆盖。</source>
        <comment>41610</comment>
        <translation>Cannot read the reference point file %s; the map is not calibrated.

The file will not be overwritten.</translation>
    </message>
    <message>
        <source>无法读取的参照点文件已保留为 %s。</source>
        <comment>41611</comment>
        <translation>The unreadable reference point file was kept as %s.</translation>
    </message>
    <message>
        <source>NMEA 转发</source>
        <comment>41701</comment>
        <translation>NMEA relay</translation>
    </message>
    <message>
        <source>NMEA 转发无法在 %s 上监听，GPS接收机照常运行。</source>
        <comment>41702</comment>
        <translation>The NMEA relay cannot listen on %s; the GPS receiver runs on as usual.</translation>
    </message>
    <message>
        <source>本机 gpsd</source>
        <comment>41703</comment>
        <translation>Local gpsd</translation>
    </message>
    <message>
        <source>GPS接收机发送的是其他卫星系统的数据 (GN、GL、GA、GB、BD)，没有GPS (GP) 定位数据，因此无法定位。

请在“选项”中开启“接收所有卫星系统” (或使用启动参数 --all-talkers)。</source>
        <comment>41704</comment>
        <translation>The GPS receiver sends data of other satellite systems (GN, GL, GA, GB, BD) and no GPS (GP) fixes, so no position can be found.

Turn on “Accept all satellite systems” in “Options” (or start with --all-talkers).</translation>
    </message>
    <message>
        <source>界面缩放</source>
        <comment>42001</comment>
        <translation>Interface scale</translation>
    </message>
    <message>
        <source>自动</source>
        <comment>42002</comment>
        <translation>Auto</translation>
    </message>
    <message>
        <source>GPS 设置</source>
        <comment>43001</comment>
        <translation>GPS Settings</translation>
    </message>
    <message>
        <source>设备:</source>
        <comment>43002</comment>
        <translation>Device:</translation>
    </message>
    <message>
        <source>COM端口:</source>
        <comment>43003</comment>
        <translation>COM port:</translation>
    </message>
    <message>
        <source>波特率:</source>
        <comment>43004</comment>
        <translation>Baud rate:</translation>
    </message>
    <message>
        <source>自动搜索蓝牙GPS设备</source>
        <comment>43005</comment>
        <translation>Search for Bluetooth GPS automatically</translation>
    </message>
    <message>
        <source>Search Bluetooth GPS Receiver failed:%s

Please try again!</source>
        <comment>43006</comment>
        <translation>Could not start the search for Bluetooth GPS receivers: %s

Please try again!</translation>
    </message>
    <message>
        <source>常规设置</source>
        <comment>43011</comment>
        <translation>General</translation>
    </message>
    <message>
        <source>自动开启/关闭蓝牙</source>
        <comment>43012</comment>
        <translation>Turn Bluetooth on/off as needed</translation>
    </message>
    <message>
        <source>保持背景灯常亮</source>
        <comment>43013</comment>
        <translation>Keep the backlight on</translation>
    </message>
    <message>
        <source>记录 NMEA 数据</source>
        <comment>43014</comment>
        <translation>Record NMEA data</translation>
    </message>
    <message>
        <source>存储路径:</source>
        <comment>43015</comment>
        <translation>Storage location:</translation>
    </message>
    <message>
        <source>接收所有卫星系统</source>
        <comment>43016</comment>
        <translation>Accept all satellite systems</translation>
    </message>
    <message>
        <source>语言:</source>
        <comment>43017</comment>
        <translation>Language:</translation>
    </message>
    <message>
        <source>自动</source>
        <comment>43018</comment>
        <translation>Automatic</translation>
    </message>
    <message>
        <source>新的语言在程序下次启动时生效。</source>
        <comment>43019</comment>
        <translation>The new language takes effect the next time Satwalk starts.</translation>
    </message>
    <message>
        <source>卫星数据</source>
        <comment>43030</comment>
        <translation>Satellite Data</translation>
    </message>
    <message>
        <source>仰角</source>
        <comment>43031</comment>
        <translation>Elevation</translation>
    </message>
    <message>
        <source>方位角</source>
        <comment>43032</comment>
        <translation>Azimuth</translation>
    </message>
    <message>
        <source>纬度</source>
        <comment>43040</comment>
        <translation>Latitude</translation>
    </message>
    <message>
        <source>经度</source>
        <comment>43041</comment>
        <translation>Longitude</translation>
    </message>
    <message>
        <source>北/南:</source>
        <comment>43042</comment>
        <translation>N/S:</translation>
    </message>
    <message>
        <source>东/西:</source>
        <comment>43043</comment>
        <translation>E/W:</translation>
    </message>
    <message>
        <source>度:</source>
        <comment>43044</comment>
        <translation>Degrees:</translation>
    </message>
    <message>
        <source>分:</source>
        <comment>43045</comment>
        <translation>Minutes:</translation>
    </message>
    <message>
        <source>秒:</source>
        <comment>43046</comment>
        <translation>Seconds:</translation>
    </message>
    <message>
        <source>地图 [*.BMP; *.JPG; *.GIF; *.PNG]</source>
        <comment>43050</comment>
        <translation>Maps [*.BMP; *.JPG; *.GIF; *.PNG]</translation>
    </message>
    <message>
        <source>轨迹 [*.log; *.gpx; *.nmea]</source>
        <comment>43051</comment>
        <translation>Tracks [*.log; *.gpx; *.nmea]</translation>
    </message>
    <message>
        <source>POI [*.csv; *.gpx]</source>
        <comment>43052</comment>
        <translation>POI [*.csv; *.gpx]</translation>
    </message>
    <message>
        <source>正在读取轨迹记录…</source>
        <comment>43060</comment>
        <translation>Reading the track log…</translation>
    </message>
    <message>
        <source>Set Ref Point %s</source>
        <comment>43070</comment>
        <translation>Set Reference Point %s</translation>
    </message>
    <message>
        <source>3D GPS Fix</source>
        <comment>43080</comment>
        <translation>3D Fix</translation>
    </message>
    <message>
        <source>2D GPS Fix</source>
        <comment>43081</comment>
        <translation>2D Fix</translation>
    </message>
    <message>
        <source>GPS Fix N/A</source>
        <comment>43082</comment>
        <translation>No Fix</translation>
    </message>
    <message>
        <source>残差（米） </source>
        <comment>43090</comment>
        <translation>Residuals (m) </translation>
    </message>
    <message>
        <source>Open POI File failed!</source>
        <comment>43101</comment>
        <translation>Cannot open the POI file!</translation>
    </message>
    <message>
        <source>Load POI Icons failed: 0x08200a19

Press OK to continue...</source>
        <comment>43102</comment>
        <translation>Cannot load the POI icons: 0x08200a19

Press OK to continue.</translation>
    </message>
    <message>
        <source>Read Image Information failed!</source>
        <comment>43103</comment>
        <translation>Cannot read the image's information!</translation>
    </message>
    <message>
        <source>Save Reference Point Information failed!</source>
        <comment>43104</comment>
        <translation>Cannot save the reference points!</translation>
    </message>
    <message>
        <source>Create Track Timer failed: %s

Press OK to continue...</source>
        <comment>43105</comment>
        <translation>Could not create the track timer: %s

Press OK to continue.</translation>
    </message>
    <message>
        <source>Create Track Timer failed:%s

Press OK to continue...</source>
        <comment>43106</comment>
        <translation>Could not create the track timer:%s

Press OK to continue.</translation>
    </message>
    <message>
        <source>Create Track Move Timer failed!</source>
        <comment>43107</comment>
        <translation>Could not create the map follow timer!</translation>
    </message>
    <message>
        <source>Open Track Log failed!</source>
        <comment>43108</comment>
        <translation>Cannot open the track log!</translation>
    </message>
    <message>
        <source>Initialization failed: %s

The program will now exit.</source>
        <comment>43109</comment>
        <translation>Initialization failed: %s

The program will now exit.</translation>
    </message>
    <message>
        <source>Critical Error: %s
The program will now exit.</source>
        <comment>43110</comment>
        <translation>Critical error: %s
The program will now exit.</translation>
    </message>
    <message>
        <source>usage: satwalk [OPTIONS]
  --options PATH        the options file (default: the XDG config folder)
  --size WxH            client size above the soft-key bar (default 480x640)
  --dpi N               screen density (default 192; 96 selects the small set)
  --scale auto|100|150|200|300
                        draw the program this much larger for this run (the
                        options' interface scale; auto fills the window)
  --port SOURCE         a receiver that stands for the configured port: a device,
                        gpsd://HOST[:PORT] or tcp://HOST:PORT
  --replay [FILE]       play FILE (default: the demo drive) as the receiver
  --replay-rate X       replay speed, epochs per second (default 1)
  --script FILE         run a script (works with -platform offscreen)
  --single-instance     take part in the one-copy rule in script mode too
  --all-talkers         accept all satellite systems (GN, GL, GA, GB, BD, ... talkers)
  --relay [HOST:]PORT   serve the receiver's NMEA to TCP clients for this run
                        (host 127.0.0.1 unless named)
  --language LANG       the interface's language for this run: zh_CN, en or auto
  --list-commands       print the command ids of the menus and scripts, and exit
  --version             print the version and exit
  --help                print this and exit
</source>
        <comment>43201</comment>
        <translation>usage: satwalk [OPTIONS]
  --options PATH        the options file (default: the XDG config folder)
  --size WxH            client size above the soft-key bar (default 480x640)
  --dpi N               screen density (default 192; 96 selects the small set)
  --scale auto|100|150|200|300
                        draw the program this much larger for this run (the
                        options' interface scale; auto fills the window)
  --port SOURCE         a receiver that stands for the configured port: a device,
                        gpsd://HOST[:PORT] or tcp://HOST:PORT
  --replay [FILE]       play FILE (default: the demo drive) as the receiver
  --replay-rate X       replay speed, epochs per second (default 1)
  --script FILE         run a script (works with -platform offscreen)
  --single-instance     take part in the one-copy rule in script mode too
  --all-talkers         accept all satellite systems (GN, GL, GA, GB, BD, ... talkers)
  --relay [HOST:]PORT   serve the receiver's NMEA to TCP clients for this run
                        (host 127.0.0.1 unless named)
  --language LANG       the interface's language for this run: zh_CN, en or auto
  --list-commands       print the command ids of the menus and scripts, and exit
  --version             print the version and exit
  --help                print this and exit
</translation>
    </message>
    <message>
        <source>找不到用户手册：%s

请检查 Satwalk 的数据文件是否完整安装。</source>
        <comment>43300</comment>
        <translation>Cannot find the user manual: %s

Please check that Satwalk's data files are installed completely.</translation>
    </message>
    <message>
        <source>无法读取用户手册 %s。</source>
        <comment>43301</comment>
        <translation>Cannot read the user manual %s.</translation>
    </message>
    <message>
        <source>用户手册 %s 太大，无法显示。</source>
        <comment>43302</comment>
        <translation>The user manual %s is too large to show.</translation>
    </message>
    <message>
        <source>目录</source>
        <comment>43303</comment>
        <translation>Contents</translation>
    </message>
    <message>
        <source>关闭</source>
        <comment>43304</comment>
        <translation>Close</translation>
    </message>
    <message>
        <source>正在建立大地图的缓存…
%s</source>
        <comment>43310</comment>
        <translation>Building the cache of a large map…
%s</translation>
    </message>
    <message>
        <source>取消</source>
        <comment>43311</comment>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>正在取消…</source>
        <comment>43312</comment>
        <translation>Cancelling…</translation>
    </message>
    <message>
        <source>磁盘空间不足，无法为 %s 建立地图缓存！</source>
        <comment>43320</comment>
        <translation>Not enough disk space to build the map cache for %s!</translation>
    </message>
    <message>
        <source>无法使用地图旁边的地理坐标（%s）。

原来的地图保持不变。</source>
        <comment>43321</comment>
        <translation>The georeference beside the map cannot be used (%s).

The previous map stays.</translation>
    </message>
</context>
</TS>
