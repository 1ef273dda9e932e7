#include "gentl/remote_device.h"

namespace gentl {

// BalanceRatioSelector has no register: its values are the addresses of the parameters. Widths and
// heights are locked by consumers that acquire, the applet's own parameters are not.
const char* const kStandardFeatures = R"xml(<Category Name="Root" NameSpace="Standard">
<pFeature>DeviceControl</pFeature><pFeature>ImageFormatControl</pFeature>
<pFeature>AcquisitionControl</pFeature><pFeature>AnalogControl</pFeature>
<pFeature>TransportLayerControl</pFeature><pFeature>EventControl</pFeature>
<pFeature>Applet</pFeature>
</Category>
<Category Name="DeviceControl" NameSpace="Standard">
<pFeature>DeviceVendorName</pFeature><pFeature>DeviceModelName</pFeature>
<pFeature>DeviceVersion</pFeature><pFeature>DeviceID</pFeature>
<pFeature>DeviceSerialNumber</pFeature>
</Category>
<Category Name="ImageFormatControl" NameSpace="Standard">
<pFeature>Width</pFeature><pFeature>Height</pFeature><pFeature>WidthMax</pFeature>
<pFeature>HeightMax</pFeature><pFeature>OffsetX</pFeature><pFeature>OffsetY</pFeature>
<pFeature>PixelFormat</pFeature><pFeature>TestPattern</pFeature>
</Category>
<Category Name="AcquisitionControl" NameSpace="Standard">
<pFeature>AcquisitionMode</pFeature><pFeature>AcquisitionFrameCount</pFeature>
<pFeature>AcquisitionStart</pFeature><pFeature>AcquisitionStop</pFeature>
<pFeature>AcquisitionFrameRateEnable</pFeature><pFeature>AcquisitionFrameRate</pFeature>
<pFeature>TriggerSelector</pFeature><pFeature>TriggerMode</pFeature>
<pFeature>TriggerSource</pFeature><pFeature>TriggerActivation</pFeature>
<pFeature>TriggerSoftware</pFeature>
</Category>
<Category Name="AnalogControl" NameSpace="Standard">
<pFeature>BalanceRatioSelector</pFeature><pFeature>BalanceRatio</pFeature>
</Category>
<Category Name="TransportLayerControl" NameSpace="Standard">
<pFeature>PayloadSize</pFeature><pFeature>TLParamsLocked</pFeature>
</Category>
<Integer Name="Width" NameSpace="Standard">
<ToolTip>Width of the picture.</ToolTip>
<Visibility>Beginner</Visibility>
<pIsLocked>TLParamsLocked</pIsLocked>
<pValue>FG_WIDTH_Reg</pValue><pMin>Width_Min</pMin><pMax>Width_Max</pMax><pInc>Width_Inc</pInc>
<Unit>px</Unit>
</Integer>
<Integer Name="Height" NameSpace="Standard">
<ToolTip>Height of the picture.</ToolTip>
<Visibility>Beginner</Visibility>
<pIsLocked>TLParamsLocked</pIsLocked>
<pValue>FG_HEIGHT_Reg</pValue><pMin>Height_Min</pMin><pMax>Height_Max</pMax><pInc>Height_Inc</pInc>
<Unit>px</Unit>
</Integer>
<Integer Name="OffsetX" NameSpace="Standard">
<ToolTip>Columns left of the picture.</ToolTip>
<Visibility>Beginner</Visibility>
<pValue>FG_XOFFSET_Reg</pValue><pMin>OffsetX_Min</pMin><pMax>OffsetX_Max</pMax>
<pInc>OffsetX_Inc</pInc><Unit>px</Unit>
</Integer>
<Integer Name="OffsetY" NameSpace="Standard">
<ToolTip>Lines above the picture.</ToolTip>
<Visibility>Beginner</Visibility>
<pValue>FG_YOFFSET_Reg</pValue><pMin>OffsetY_Min</pMin><pMax>OffsetY_Max</pMax>
<pInc>OffsetY_Inc</pInc><Unit>px</Unit>
</Integer>
<Integer Name="WidthMax" NameSpace="Standard">
<ToolTip>Largest width at this offset.</ToolTip>
<Visibility>Expert</Visibility>
<pValue>Width_Max</pValue><Unit>px</Unit>
</Integer>
<Integer Name="HeightMax" NameSpace="Standard">
<ToolTip>Largest height at this offset.</ToolTip>
<Visibility>Expert</Visibility>
<pValue>Height_Max</pValue><Unit>px</Unit>
</Integer>
<Enumeration Name="PixelFormat" NameSpace="Standard">
<ToolTip>Format of the pixels in the buffers.</ToolTip>
<Visibility>Beginner</Visibility>
<pIsLocked>TLParamsLocked</pIsLocked>
<EnumEntry Name="BGR8"><Value>35127317</Value></EnumEntry><Value>35127317</Value>
</Enumeration>
<Enumeration Name="TestPattern" NameSpace="Standard">
<ToolTip>The ramp of the camera simulator in place of the camera.</ToolTip>
<Visibility>Beginner</Visibility>
<EnumEntry Name="Off"><Value>0</Value></EnumEntry>
<EnumEntry Name="GreyDiagonalRampMoving"><Value>1</Value></EnumEntry>
<pValue>FG_GEN_ENABLE_Reg</pValue>
</Enumeration>
<Enumeration Name="AcquisitionMode" NameSpace="Standard">
<ToolTip>How many pictures a start acquires.</ToolTip>
<Visibility>Beginner</Visibility>
<EnumEntry Name="Continuous"><Value>0</Value></EnumEntry>
<EnumEntry Name="SingleFrame"><Value>1</Value></EnumEntry>
<EnumEntry Name="MultiFrame"><Value>2</Value></EnumEntry>
<pValue>AcquisitionMode_Reg</pValue>
</Enumeration>
<Integer Name="AcquisitionFrameCount" NameSpace="Standard">
<ToolTip>Pictures of the mode MultiFrame.</ToolTip>
<Visibility>Expert</Visibility>
<pValue>AcquisitionFrameCount_Reg</pValue><Min>1</Min><Max>2147483647</Max>
</Integer>
<Command Name="AcquisitionStart" NameSpace="Standard">
<ToolTip>Lets the camera send pictures.</ToolTip>
<Visibility>Beginner</Visibility>
<pValue>AcquisitionStart_Reg</pValue><CommandValue>1</CommandValue>
</Command>
<Command Name="AcquisitionStop" NameSpace="Standard">
<ToolTip>Ends sending.</ToolTip>
<Visibility>Beginner</Visibility>
<pValue>AcquisitionStop_Reg</pValue><CommandValue>1</CommandValue>
</Command>
<Boolean Name="AcquisitionFrameRateEnable" NameSpace="Standard">
<ToolTip>The design's generator paces the camera, which runs freely otherwise.</ToolTip>
<Visibility>Expert</Visibility>
<pValue>AcquisitionFrameRateEnable_Reg</pValue><OnValue>1</OnValue><OffValue>0</OffValue>
</Boolean>
<Float Name="AcquisitionFrameRate" NameSpace="Standard">
<ToolTip>Rate of the design's generator, which paces the camera once it is set.</ToolTip>
<Visibility>Beginner</Visibility>
<pValue>AcquisitionFrameRate_Reg</pValue><pMin>AcquisitionFrameRate_Min</pMin>
<pMax>AcquisitionFrameRate_Max</pMax><Unit>Hz</Unit>
</Float>
<Enumeration Name="TriggerSelector" NameSpace="Standard">
<ToolTip>What a trigger starts.</ToolTip>
<Visibility>Beginner</Visibility>
<EnumEntry Name="FrameStart"><Value>0</Value></EnumEntry><Value>0</Value>
</Enumeration>
<Enumeration Name="TriggerMode" NameSpace="Standard">
<ToolTip>Pictures at triggers only.</ToolTip>
<Visibility>Beginner</Visibility>
<EnumEntry Name="Off"><Value>0</Value></EnumEntry>
<EnumEntry Name="On"><Value>1</Value></EnumEntry>
<pValue>TriggerMode_Reg</pValue>
</Enumeration>
<Enumeration Name="TriggerSource" NameSpace="Standard">
<ToolTip>Where triggers come from.</ToolTip>
<Visibility>Beginner</Visibility>
<EnumEntry Name="Software"><Value>0</Value></EnumEntry>
<EnumEntry Name="Line0"><Value>1</Value></EnumEntry>
<EnumEntry Name="Line1"><Value>2</Value></EnumEntry>
<EnumEntry Name="Line2"><Value>3</Value></EnumEntry>
<EnumEntry Name="Line3"><Value>4</Value></EnumEntry>
<EnumEntry Name="Line4"><Value>5</Value></EnumEntry>
<EnumEntry Name="Line5"><Value>6</Value></EnumEntry>
<EnumEntry Name="Line6"><Value>7</Value></EnumEntry>
<EnumEntry Name="Line7"><Value>8</Value></EnumEntry>
<pValue>TriggerSource_Reg</pValue>
</Enumeration>
<Enumeration Name="TriggerActivation" NameSpace="Standard">
<ToolTip>Edge of the line that triggers.</ToolTip>
<Visibility>Expert</Visibility>
<EnumEntry Name="RisingEdge"><Value>0</Value></EnumEntry>
<EnumEntry Name="FallingEdge"><Value>1</Value></EnumEntry>
<pValue>FG_TRIGGERIN_POLARITY_Reg</pValue>
</Enumeration>
<Command Name="TriggerSoftware" NameSpace="Standard">
<ToolTip>One software trigger.</ToolTip>
<Visibility>Beginner</Visibility>
<pValue>FG_SENDSOFTWARETRIGGER_Reg</pValue><CommandValue>1</CommandValue>
</Command>
<Enumeration Name="BalanceRatioSelector" NameSpace="Standard">
<ToolTip>Colour of the balance ratio.</ToolTip>
<Visibility>Expert</Visibility>
<EnumEntry Name="Red"><Value>13000</Value></EnumEntry>
<EnumEntry Name="Green"><Value>13030</Value></EnumEntry>
<EnumEntry Name="Blue"><Value>13010</Value></EnumEntry>
<pValue>BalanceRatioAddress</pValue>
<pSelected>BalanceRatio</pSelected>
</Enumeration>
<Integer Name="BalanceRatioAddress">
<Visibility>Invisible</Visibility><Value>13000</Value>
</Integer>
<Float Name="BalanceRatio" NameSpace="Standard">
<ToolTip>Factor of the selected colour.</ToolTip>
<Visibility>Expert</Visibility>
<pValue>BalanceRatio_Reg</pValue><pMin>BalanceRatio_Min</pMin><pMax>BalanceRatio_Max</pMax>
</Float>
<FloatReg Name="BalanceRatio_Reg">
<pAddress>BalanceRatioAddress</pAddress><Length>8</Length><AccessMode>RW</AccessMode>
<pPort>Device</pPort><Cachable>NoCache</Cachable><pInvalidator>BalanceRatioSelector</pInvalidator>
<Endianess>LittleEndian</Endianess>
</FloatReg>
<Integer Name="PayloadSize" NameSpace="Standard">
<ToolTip>Bytes of a picture.</ToolTip>
<Visibility>Expert</Visibility>
<pValue>PayloadSize_Reg</pValue><Unit>B</Unit>
</Integer>
<Integer Name="TLParamsLocked" NameSpace="Standard">
<ToolTip>1 while the consumer acquires.</ToolTip>
<Visibility>Invisible</Visibility><Value>0</Value><Min>0</Min><Max>1</Max>
</Integer>
)xml";

}  // namespace gentl
